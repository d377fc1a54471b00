#include "settings/locale_names.h"

#include <gtest/gtest.h>

#include <map>

namespace quillmark {
namespace {

std::vector<std::string> fromEnvironment(std::map<std::string, std::string> environment) {
  return preferredLanguagesFromEnvironment([&](const char* name) -> const char* {
    const auto it = environment.find(name);
    return it == environment.end() ? nullptr : it->second.c_str();
  });
}

TEST(LocaleNamesTest, PosixNamesBecomeLanguageTags) {
  EXPECT_EQ(languageTagFromPosixLocale("zh_TW.UTF-8"), "zh-TW");
  EXPECT_EQ(languageTagFromPosixLocale("de_DE@euro"), "de-DE");
  EXPECT_EQ(languageTagFromPosixLocale("sr_RS.UTF-8@latin"), "sr-RS");
  EXPECT_EQ(languageTagFromPosixLocale("fr"), "fr");
  for (const char* none : {"C", "POSIX", "C.UTF-8", "", ".UTF-8"})
    EXPECT_EQ(languageTagFromPosixLocale(none), "") << none;
}

// The language list comes first, then the one locale variable that wins; a C locale means no
// translation, even with a language list.
TEST(LocaleNamesTest, PreferredLanguagesFromTheEnvironment) {
  using Environment = std::map<std::string, std::string>;
  const std::pair<Environment, std::vector<std::string>> cases[] = {
      {{{"LANGUAGE", "pt_BR:zh_TW::de"}, {"LANG", "ja_JP.UTF-8"}}, {"pt-BR", "zh-TW", "de", "ja-JP"}},
      {{{"LANGUAGE", "de"}}, {"de"}},  // LANG unset: the language list alone decides
      {{{"LC_ALL", "fr_FR.UTF-8"}, {"LC_MESSAGES", "de_DE"}, {"LANG", "ja_JP"}}, {"fr-FR"}},
      {{{"LC_ALL", ""}, {"LC_MESSAGES", "de_DE"}, {"LANG", "ja_JP"}}, {"de-DE"}},
      {{{"LANG", "ko_KR.UTF-8"}}, {"ko-KR"}},
      {{{"LANGUAGE", "de"}, {"LANG", "C.UTF-8"}}, {}},
      {{{"LANGUAGE", "de"}, {"LC_ALL", "POSIX"}, {"LANG", "fr_FR"}}, {}},
      {{}, {}},
  };
  for (const auto& [environment, expected] : cases) {
    EXPECT_EQ(fromEnvironment(environment), expected) << ::testing::PrintToString(environment);
  }
}

TEST(LocaleNamesTest, TableCodes) {
  const std::map<std::string, std::optional<std::string>> cases = {
      {"zh-Hans-CN", "zh-Hans"},
      {"zh-CN", "zh-Hans"},
      {"zh-SG", "zh-Hans"},
      {"zh", "zh-Hans"},
      {"zh-Hant-HK", "zh-Hant"},
      {"zh-TW", "zh-Hant"},
      {"zh-HK", "zh-Hant"},
      {"zh-MO", std::nullopt},
      {"ja-JP", "ja"},
      {"de-AT", "de"},
      {"fr-CA", "fr"},
      {"es-419", "es"},
      {"ko", "ko"},
      {"th-TH", "th"},
      {"en-GB", "en"},
      {"pt-BR", std::nullopt},
      {"", std::nullopt},
      {"kok-IN", std::nullopt},  // Konkani, not Korean
      {"frr", std::nullopt},     // North Frisian, not French
  };
  for (const auto& [tag, code] : cases) EXPECT_EQ(tableCodeForLanguage(tag), code) << tag;
}

TEST(LocaleNamesTest, FirstMatchingPreferredLanguageWinsElseEnglish) {
  const std::vector<std::string> portugueseThenTaiwan = {"pt-BR", "zh-TW"};
  EXPECT_EQ(tableCodeForPreferredLanguages(portugueseThenTaiwan), "zh-Hant");
  const std::vector<std::string> portuguese = {"pt-BR"};
  EXPECT_EQ(tableCodeForPreferredLanguages(portuguese), "en");
  EXPECT_EQ(tableCodeForPreferredLanguages({}), "en");
}

}  // namespace
}  // namespace quillmark
