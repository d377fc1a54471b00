#include "settings/locale_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

TEST(LocaleNamesTest, LanguageListComesFirstThenTheMessagesLocale) {
  EXPECT_THAT(fromEnvironment({{"LANGUAGE", "pt_BR:zh_TW::de"}, {"LANG", "ja_JP.UTF-8"}}),
              ElementsAre("pt-BR", "zh-TW", "de", "ja-JP"));
  // No locale variable at all (LANG unset): the language list alone decides.
  EXPECT_THAT(fromEnvironment({{"LANGUAGE", "de"}}), ElementsAre("de"));
}

TEST(LocaleNamesTest, OnlyTheWinningLocaleVariableCounts) {
  EXPECT_THAT(fromEnvironment({{"LC_ALL", "fr_FR.UTF-8"}, {"LC_MESSAGES", "de_DE"}, {"LANG", "ja_JP"}}),
              ElementsAre("fr-FR"));
  EXPECT_THAT(fromEnvironment({{"LC_ALL", ""}, {"LC_MESSAGES", "de_DE"}, {"LANG", "ja_JP"}}),
              ElementsAre("de-DE"));
  EXPECT_THAT(fromEnvironment({{"LANG", "ko_KR.UTF-8"}}), ElementsAre("ko-KR"));
}

TEST(LocaleNamesTest, CLocaleMeansNoTranslationEvenWithLanguageSet) {
  EXPECT_THAT(fromEnvironment({{"LANGUAGE", "de"}, {"LANG", "C.UTF-8"}}), IsEmpty());
  EXPECT_THAT(fromEnvironment({{"LANGUAGE", "de"}, {"LC_ALL", "POSIX"}, {"LANG", "fr_FR"}}), IsEmpty());
  EXPECT_THAT(fromEnvironment({}), IsEmpty());
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
