#include "settings/l10n.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/file_util.h"
#include "base/paths.h"
#include "settings/settings_types.h"
#include "settings/testing/temp_environment.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class L10nTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = testing::makeTempDirectory();
    table("en",
          "\"only.en\" = \"English only\";\n"
          "\"both\" = \"Both (en)\";\n"
          "\"watts\" = \"%.1f W\";\n"
          "\"pair\" = \"%1$@ of %2$@\";\n"
          "\"settings.module.gpu\" = \"GPU\";\n");
    table("de",
          "\"both\" = \"Beide\";\n"
          "\"watts\" = \"%.1f W\";\n"
          "\"pair\" = \"%2$@ von %1$@\";\n"
          "\"Abbrechen\" = \"Abbrechen\";\n");
    table("zh-Hant", "\"both\" = \"兩者\";\n");
  }
  void table(const std::string& code, const std::string& text) {
    testing::writeTestFile(dir + "/" + code + ".lproj/Localizable.strings", text);
  }
  std::unique_ptr<L10n> make(std::vector<std::string> preferred = {"en-US"}) {
    return std::make_unique<L10n>(store, dir, std::move(preferred));
  }

  std::string dir;
  MemoryDefaultsStore store;
};

TEST_F(L10nTest, LookupFallsBackToEnglishThenToTheKey) {
  store.set("appLanguage", std::string("de"));
  auto l10n = make();
  EXPECT_EQ(l10n->string("both"), "Beide");
  EXPECT_EQ(l10n->string("only.en"), "English only");
  EXPECT_EQ(l10n->string("nowhere.at.all"), "nowhere.at.all");
  EXPECT_EQ(L(*l10n, "nowhere.%d", 5), "nowhere.5");  // the key itself is the format
}

TEST_F(L10nTest, TranslationEqualToItsKeyIsStillFound) {
  table("en", "\"Abbrechen\" = \"Cancel\";\n");
  store.set("appLanguage", std::string("de"));
  EXPECT_EQ(make()->string("Abbrechen"), "Abbrechen");
}

TEST_F(L10nTest, UnknownOrAbsentStoredLanguageIsSystem) {
  EXPECT_EQ(make()->language(), AppLanguage::system);
  store.set("appLanguage", std::string("it"));
  auto l10n = make({"pt-BR", "zh-TW"});
  EXPECT_EQ(l10n->language(), AppLanguage::system);
  EXPECT_EQ(l10n->resolvedCode(), "zh-Hant");
  EXPECT_EQ(l10n->string("both"), "兩者");
  EXPECT_EQ(make({"pt-BR"})->resolvedCode(), "en");
  store.set("appLanguage", std::string("zh-hans"));  // raw values match exactly
  EXPECT_EQ(make()->language(), AppLanguage::system);
  store.set("appLanguage", true);
  EXPECT_EQ(make()->language(), AppLanguage::system);
}

TEST_F(L10nTest, ChangingLanguageStoresItAndSubscribersAlreadyReadTheNewTable) {
  auto l10n = make();
  std::vector<std::string> seen;
  (void)l10n->language.subscribe([&](const AppLanguage&) { seen.push_back(l10n->string("both")); });
  l10n->language.set(AppLanguage::de);
  EXPECT_EQ(store.getString("appLanguage"), "de");
  l10n->language.set(AppLanguage::system);
  EXPECT_EQ(store.getString("appLanguage"), "system");
  EXPECT_THAT(seen, ElementsAre("Beide", "Both (en)"));
}

TEST_F(L10nTest, NumbersFollowTheLanguageAndArgumentsMayBeReordered) {
  auto l10n = make();
  EXPECT_EQ(L(*l10n, "watts", 12.34), "12.3 W");
  EXPECT_EQ(L(*l10n, "pair", "1 GB", "8 GB"), "1 GB of 8 GB");
  l10n->language.set(AppLanguage::de);
  EXPECT_EQ(L(*l10n, "watts", 12.34), "12,3 W");
  EXPECT_EQ(L(*l10n, "pair", "1 GB", "8 GB"), "8 GB von 1 GB");
  l10n->language.set(AppLanguage::ja);  // no table: English texts, Japanese numbers (a point)
  EXPECT_EQ(L(*l10n, "watts", 12.34), "12.3 W");
  l10n->language.set(AppLanguage::fr);
  EXPECT_EQ(L(*l10n, "watts", 12.34), "12,3 W");  // English text, French number
}

TEST_F(L10nTest, DamagedTableIsIgnoredAndLogged) {
  table("de", "\"both\" = \"Beide\";\n\"broken\" = \"no semicolon\"\n");
  store.set("appLanguage", std::string("de"));
  auto l10n = make();
  EXPECT_EQ(l10n->string("both"), "Both (en)");
  const auto log = readWholeFile(logFilePath());
  ASSERT_TRUE(log);
  EXPECT_THAT(*log, HasSubstr("de.lproj/Localizable.strings ignored: line 3: expected ';'"));
}

TEST_F(L10nTest, WithoutTablesOnDiskTheBuiltInEnglishIsUsedAndTheMissingTablesAreLoggedOnce) {
  const std::size_t logBefore = readWholeFile(logFilePath()).value_or("").size();
  auto l10n = std::make_unique<L10n>(store, dir + "/nonexistent", std::vector<std::string>{"de"});
  EXPECT_EQ(l10n->resolvedCode(), "de");
  EXPECT_EQ(l10n->string("settings.language.german"), "German (Deutsch)");
  EXPECT_EQ(l10n->string("both"), "both");  // a key no table has is still shown as itself
  l10n->language.set(AppLanguage::de);
  l10n->language.set(AppLanguage::en);
  const std::string log = readWholeFile(logFilePath()).value_or("").substr(logBefore);
  for (const std::string code : {"de", "en"}) {
    const std::string line =
        "String table " + dir + "/nonexistent/" + code + ".lproj/Localizable.strings not found";
    const auto first = log.find(line);
    EXPECT_NE(first, std::string::npos) << log;
    EXPECT_EQ(log.find(line, first + 1), std::string::npos) << "logged twice: " << line;
  }
}

TEST(StringTablesLocationTest, FoundRelativeToTheProgramInstalledOrInTheBuildTree) {
  const std::string root = testing::makeTempDirectory();
  for (const std::string prefix : {"/usr", "/build"}) {
    testing::writeTestFile(root + prefix + "/share/quillmark/resources/en.lproj/Localizable.strings", "");
  }
  EXPECT_EQ(findStringTablesNear(root + "/usr/bin/quillmark"), root + "/usr/share/quillmark/resources");
  EXPECT_EQ(findStringTablesNear(root + "/build/src/app/frontend/quillmark"),
            root + "/build/share/quillmark/resources");
  EXPECT_EQ(findStringTablesNear(root + "/elsewhere/quillmark"), "");
  EXPECT_EQ(findStringTablesNear(""), "");
  // This test program itself sits in the build tree, whose tables the build keeps current.
  EXPECT_NE(readWholeFile(stringTablesDirectory() + "/en.lproj/Localizable.strings"), std::nullopt);
}

}  // namespace
}  // namespace quillmark
