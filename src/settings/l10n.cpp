#include "settings/l10n.h"

#include <unistd.h>

#include <algorithm>

#include "base/file_util.h"
#include "base/log.h"
#include "settings/built_in_strings.h"
#include "settings/locale_names.h"
#include "settings/strings_file.h"

namespace quillmark {
namespace {

struct LanguageInfo {
  AppLanguage language;
  std::string_view raw;
  std::string_view displayNameKey;
};

constexpr std::array<LanguageInfo, 10> kLanguages = {{
    {AppLanguage::system, "system", "settings.language.system"},
    {AppLanguage::en, "en", "settings.language.english"},
    {AppLanguage::zhHans, "zh-Hans", "settings.language.simplifiedChinese"},
    {AppLanguage::ja, "ja", "settings.language.japanese"},
    {AppLanguage::de, "de", "settings.language.german"},
    {AppLanguage::fr, "fr", "settings.language.french"},
    {AppLanguage::zhHant, "zh-Hant", "settings.language.traditionalChinese"},
    {AppLanguage::es, "es", "settings.language.spanish"},
    {AppLanguage::ko, "ko", "settings.language.korean"},
    {AppLanguage::th, "th", "settings.language.thai"},
}};

// info() indexes the table by the enum's value.
constexpr bool inEnumOrder() {
  for (std::size_t i = 0; i < kLanguages.size(); ++i) {
    if (static_cast<std::size_t>(kLanguages[i].language) != i) return false;
  }
  return true;
}
static_assert(inEnumOrder());

const LanguageInfo& info(AppLanguage language) { return kLanguages[static_cast<std::size_t>(language)]; }

AppLanguage storedLanguage(const DefaultsStore& defaults) {
  const auto raw = defaults.getString(L10n::kDefaultsKey);
  return raw ? appLanguageFromRaw(*raw).value_or(AppLanguage::system) : AppLanguage::system;
}

}  // namespace

std::string_view rawValue(AppLanguage language) { return info(language).raw; }
std::string_view displayNameKey(AppLanguage language) { return info(language).displayNameKey; }

std::optional<AppLanguage> appLanguageFromRaw(std::string_view raw) {
  for (const LanguageInfo& entry : kLanguages) {
    if (entry.raw == raw) return entry.language;
  }
  return std::nullopt;
}

std::string_view StringTable::localizedString(std::string_view key, std::string_view valueIfMissing) const {
  // Heterogeneous lookup of unordered_map needs C++20 library support not yet in every toolchain.
  const auto it = entries_.find(std::string(key));
  return it == entries_.end() ? valueIfMissing : std::string_view(it->second);
}

L10n::L10n(DefaultsStore& defaults, std::string tablesDirectory, std::vector<std::string> preferredLanguages)
    : language(
          storedLanguage(defaults),
          [this](const AppLanguage& chosen) { defaults_.set(kDefaultsKey, std::string(rawValue(chosen))); },
          [this](const AppLanguage& chosen) { reload(chosen); }),
      defaults_(defaults),
      tablesDirectory_(std::move(tablesDirectory)),
      preferredLanguages_(std::move(preferredLanguages)) {
  reload(language.value());
}

std::shared_ptr<const StringTable> L10n::loadTable(const std::string& code) const {
  const std::string path = tablesDirectory_ + "/" + code + ".lproj/Localizable.strings";
  auto bytes = readWholeFile(path);
  if (!bytes) {
    if (std::find(reportedMissing_.begin(), reportedMissing_.end(), code) == reportedMissing_.end()) {
      reportedMissing_.push_back(code);
      Log::debug("String table " +
                 (tablesDirectory_.empty() ? code + " (no table folder beside the program)" : path) +
                 " not found; " +
                 (code == "en" ? "the built-in English table is used" : "English texts are shown"));
    }
    if (code != "en") return nullptr;
    bytes = std::string(builtInEnglishStrings());
  }
  StringsFile file = parseStringsFile(*bytes);
  if (!file.ok()) {
    // A damaged table is left out as a whole: half a table would mix languages unpredictably.
    Log::debug("String table " + path + " ignored: " + file.error->describe());
    return nullptr;
  }
  std::unordered_map<std::string, std::string> entries;
  for (auto& [key, value] : file.entries) entries.insert_or_assign(std::move(key), std::move(value));
  return std::make_shared<const StringTable>(std::move(entries));
}

void L10n::reload(AppLanguage chosen) {
  auto next = std::make_shared<Tables>();
  next->code = chosen == AppLanguage::system ? tableCodeForPreferredLanguages(preferredLanguages_)
                                             : std::string(rawValue(chosen));
  next->fallback = loadTable("en");
  next->primary = next->code == "en" ? next->fallback : loadTable(next->code);
  next->style = NumberStyle::forLanguageCode(next->code);
  std::lock_guard lock(mutex_);
  tables_ = std::move(next);
}

std::shared_ptr<const L10n::Tables> L10n::tables() const {
  std::lock_guard lock(mutex_);
  return tables_;
}

std::string L10n::lookup(const Tables& tables, std::string_view key) {
  for (const auto& table : {tables.primary, tables.fallback}) {
    if (!table) continue;
    const std::string_view text = table->localizedString(key, kMissingKeySentinel);
    if (text != kMissingKeySentinel) return std::string(text);
  }
  return std::string(key);
}

std::string L10n::string(std::string_view key) const { return lookup(*tables(), key); }

std::string L10n::format(std::string_view key, std::span<const FormatArg> args) const {
  // One snapshot of the tables, so text and number style come from the same language.
  const auto current = tables();
  return formatString(lookup(*current, key), args, current->style);
}

std::string L10n::resolvedCode() const { return tables()->code; }
NumberStyle L10n::numberStyle() const { return tables()->style; }

L10n& L10n::shared() {
  static L10n instance(DefaultsStore::shared(), stringTablesDirectory(), systemPreferredLanguages());
  return instance;
}

std::string L(std::string_view key) { return L10n::shared().string(key); }

std::string findStringTablesNear(const std::string& executable) {
  if (executable.empty()) return {};
  // Four levels cover <prefix>/bin/quillmark and <build>/src/app/frontend/quillmark.
  std::string folder = parentDirectory(executable);
  for (int level = 0; level < 5; ++level) {
    const std::string candidate = parentDirectory(folder) + "/share/quillmark/resources";
    if (access((candidate + "/en.lproj/Localizable.strings").c_str(), R_OK) == 0) return candidate;
    const std::string up = parentDirectory(folder);
    if (up == folder) break;
    folder = up;
  }
  return {};
}

}  // namespace quillmark
