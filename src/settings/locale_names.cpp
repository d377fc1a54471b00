#include "settings/locale_names.h"

#include <algorithm>

namespace quillmark {

std::string languageTagFromPosixLocale(std::string_view name) {
  name = name.substr(0, name.find_first_of(".@"));
  if (name.empty() || name == "C" || name == "POSIX") return {};
  std::string tag(name);
  std::replace(tag.begin(), tag.end(), '_', '-');
  return tag;
}

std::vector<std::string> preferredLanguagesFromEnvironment(
    const std::function<const char*(const char*)>& getenv) {
  std::string messagesLocale;
  bool messagesLocaleSet = false;
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = getenv(variable);
    if (value && *value) {
      messagesLocale = value;
      messagesLocaleSet = true;
      break;
    }
  }
  const std::string messagesTag = languageTagFromPosixLocale(messagesLocale);
  std::vector<std::string> out;
  if (!messagesLocaleSet || !messagesTag.empty()) {
    const char* language = getenv("LANGUAGE");
    std::string_view list = language ? language : "";
    while (!list.empty()) {
      const auto colon = list.find(':');
      const std::string tag = languageTagFromPosixLocale(list.substr(0, colon));
      if (!tag.empty()) out.push_back(tag);
      list = colon == std::string_view::npos ? std::string_view{} : list.substr(colon + 1);
    }
  }
  if (!messagesTag.empty()) out.push_back(messagesTag);
  return out;
}

std::optional<std::string> tableCodeForLanguage(std::string_view tag) {
  // Compared subtag by subtag: a prefix test would read Konkani ("kok") as Korean.
  const auto dash = tag.find('-');
  const std::string_view language = tag.substr(0, dash);
  if (language == "zh") {
    // The script if given, else the region; plain "zh" is Simplified.
    const std::string_view rest = dash == std::string_view::npos ? std::string_view{} : tag.substr(dash + 1);
    const std::string_view second = rest.substr(0, rest.find('-'));
    if (second.empty() || second == "Hans" || second == "CN" || second == "SG") return "zh-Hans";
    if (second == "Hant" || second == "TW" || second == "HK") return "zh-Hant";
    return std::nullopt;
  }
  for (const char* code : {"ja", "de", "fr", "es", "ko", "th", "en"}) {
    if (language == code) return std::string(code);
  }
  return std::nullopt;
}

std::string tableCodeForPreferredLanguages(std::span<const std::string> preferred) {
  for (const std::string& tag : preferred) {
    if (auto code = tableCodeForLanguage(tag)) return *code;
  }
  return "en";
}

}  // namespace quillmark
