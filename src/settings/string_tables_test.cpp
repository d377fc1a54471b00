// Checks the shipped string tables against English: same keys in the same order, and every value
// with the same placeholder types in the same argument order.
#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>

#include "base/file_util.h"
#include "settings/l10n.h"
#include "settings/strings_file.h"

namespace quillmark {
namespace {

// QM_STRING_TABLES_DIR points the test at another copy (to try a change before committing it).
const std::string kTables =
    std::getenv("QM_STRING_TABLES_DIR") ? std::getenv("QM_STRING_TABLES_DIR") : QM_RESOURCES_DIR;

// The argument types a value expects, by argument number: "@", "d" (any integer: %d %i %u %ld...)
// or "f" (any floating point). Empty string at an index no placeholder uses. Errors describe
// placeholders the tables may not use and mixes of plain and positional forms.
struct Placeholders {
  std::vector<std::string> types;
  std::vector<std::string> errors;
};

Placeholders placeholdersOf(std::string_view value) {
  Placeholders out;
  bool plain = false;
  bool positional = false;
  std::size_t next = 0;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '%') continue;
    if (i + 1 < value.size() && value[i + 1] == '%') {
      ++i;
      continue;
    }
    std::size_t j = i + 1;
    std::size_t position = 0;
    const std::size_t digits = j;
    while (j < value.size() && std::isdigit(static_cast<unsigned char>(value[j])))
      position = position * 10 + (value[j++] - '0');
    if (j < value.size() && value[j] == '$' && j > digits) {
      ++j;
      positional = true;
    } else {
      j = digits;
      position = 0;
      plain = true;
    }
    if (j < value.size() && value[j] == '.') {
      ++j;
      while (j < value.size() && std::isdigit(static_cast<unsigned char>(value[j]))) ++j;
    }
    std::string length;
    while (j < value.size() && value[j] == 'l') length += value[j++];
    const char conversion = j < value.size() ? value[j] : '\0';
    std::string type;
    if (conversion == '@' && length.empty())
      type = "@";
    else if (conversion == 'd' && length.size() <= 1)
      type = "d";
    else if (conversion == 'f' && length.empty())
      type = "f";
    else
      out.errors.push_back("unsupported placeholder at \"" + std::string(value.substr(i, j + 1 - i)) + "\"");
    const std::size_t index = position ? position - 1 : next++;
    if (out.types.size() <= index) out.types.resize(index + 1);
    if (!out.types[index].empty() && out.types[index] != type) {
      out.errors.push_back("argument " + std::to_string(index + 1) + " used as two types");
    }
    out.types[index] = type;
    i = j;
  }
  if (plain && positional) out.errors.push_back("mixes plain and positional placeholders");
  return out;
}

StringsFile load(const std::string& code) {
  const auto bytes = readWholeFile(kTables + "/" + code + ".lproj/Localizable.strings");
  if (!bytes) return StringsFile{{}, StringsParseError{0, "file missing"}};
  return parseStringsFile(*bytes);
}

TEST(PlaceholderReaderTest, ReadsTypesByPosition) {
  EXPECT_EQ(placeholdersOf("CPU %1$.0f%% MEM %2$.0f%%").types, (std::vector<std::string>{"f", "f"}));
  EXPECT_EQ(placeholdersOf("%2$@ von %1$d").types, (std::vector<std::string>{"d", "@"}));
  EXPECT_EQ(placeholdersOf("%ld processes").types, (std::vector<std::string>{"d"}));
  EXPECT_EQ(placeholdersOf("100%% sure").types, (std::vector<std::string>{}));
  EXPECT_FALSE(placeholdersOf("%1$d and %d").errors.empty());
  EXPECT_FALSE(placeholdersOf("%s").errors.empty());
  EXPECT_FALSE(placeholdersOf("50% off").errors.empty());
}

TEST(StringTablesTest, EnglishParses) {
  const StringsFile english = load("en");
  ASSERT_TRUE(english.ok()) << english.error->describe();
  EXPECT_GT(english.entries.size(), 100u);
  std::set<std::string> seen;
  for (const auto& [key, value] : english.entries) {
    EXPECT_TRUE(seen.insert(key).second) << "duplicate key " << key;
    for (const auto& error : placeholdersOf(value).errors) ADD_FAILURE() << "en: " << key << ": " << error;
  }
}

class LanguageTableTest : public ::testing::TestWithParam<AppLanguage> {};

TEST_P(LanguageTableTest, MatchesEnglish) {
  const std::string code(rawValue(GetParam()));
  const StringsFile english = load("en");
  const StringsFile table = load(code);
  ASSERT_TRUE(english.ok());
  ASSERT_TRUE(table.ok()) << code << ": " << table.error->describe();

  std::map<std::string, std::string> translated;
  std::vector<std::string> order;
  for (const auto& [key, value] : table.entries) {
    if (!translated.emplace(key, value).second) ADD_FAILURE() << code << ": duplicate key " << key;
    order.push_back(key);
  }
  std::vector<std::string> englishOrder;
  for (const auto& [key, englishValue] : english.entries) {
    englishOrder.push_back(key);
    const auto it = translated.find(key);
    if (it == translated.end()) {
      ADD_FAILURE() << code << " lacks " << key;
      continue;
    }
    const Placeholders expected = placeholdersOf(englishValue);
    const Placeholders actual = placeholdersOf(it->second);
    EXPECT_EQ(actual.types, expected.types)
        << code << ": " << key << " = \"" << it->second << "\" takes other arguments than English \""
        << englishValue << "\"";
    for (const auto& error : actual.errors) ADD_FAILURE() << code << ": " << key << ": " << error;
    translated.erase(it);
  }
  for (const auto& [key, value] : translated)
    ADD_FAILURE() << code << " has " << key << ", which English lacks";
  if (translated.empty() && order.size() == englishOrder.size()) {
    EXPECT_EQ(order, englishOrder) << code << ": keys are not in the order of English";
  }
}

std::string languageName(const ::testing::TestParamInfo<AppLanguage>& info) {
  std::string name(rawValue(info.param));
  std::erase(name, '-');
  return name;
}

INSTANTIATE_TEST_SUITE_P(AllTranslations, LanguageTableTest,
                         ::testing::Values(AppLanguage::zhHans, AppLanguage::ja, AppLanguage::de,
                                           AppLanguage::fr, AppLanguage::zhHant, AppLanguage::es,
                                           AppLanguage::ko, AppLanguage::th),
                         languageName);

TEST(StringTablesTest, EveryLanguageFolderIsKnown) {
  DIR* dir = opendir(kTables.c_str());
  ASSERT_NE(dir, nullptr) << kTables;
  while (const dirent* item = readdir(dir)) {
    const std::string name = item->d_name;
    if (name.size() > 6 && name.ends_with(".lproj")) {
      EXPECT_TRUE(appLanguageFromRaw(name.substr(0, name.size() - 6))) << "unknown table folder " << name;
    }
  }
  closedir(dir);
}

}  // namespace
}  // namespace quillmark
