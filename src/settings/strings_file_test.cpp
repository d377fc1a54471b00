#include "settings/strings_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillmark {
namespace {

using ::testing::HasSubstr;
using Entry = std::pair<std::string, std::string>;

std::string valueOf(std::string_view text) {
  const StringsFile file = parseStringsFile(text);
  EXPECT_TRUE(file.ok()) << (file.error ? file.error->describe() : "");
  EXPECT_EQ(file.entries.size(), 1u);
  return file.entries.empty() ? std::string("<none>") : file.entries[0].second;
}

StringsParseError errorOf(std::string_view text) {
  const StringsFile file = parseStringsFile(text);
  EXPECT_FALSE(file.ok()) << "parsed: " << text;
  EXPECT_TRUE(file.entries.empty());
  return file.error.value_or(StringsParseError{});
}

TEST(StringsFileTest, EntriesCommentsAndWhitespace) {
  const StringsFile file = parseStringsFile(
      "/* header\n spanning lines */\n"
      "// MARK: alert\n"
      "\"a.b\" = \"One\";\n"
      "  \"c\"\t=\"Two\" ; // trailing\n"
      "\"d\" /* inside */ = /* too */ \"Three\";\n"
      "\"same\";\n"
      "unquoted.key = plain-value;\n"
      "\"k\" = \"1\";\n\"k\" = \"2\";");  // a later duplicate is kept, in order
  ASSERT_TRUE(file.ok()) << file.error->describe();
  EXPECT_EQ(file.entries, (std::vector<Entry>{{"a.b", "One"},
                                              {"c", "Two"},
                                              {"d", "Three"},
                                              {"same", "same"},
                                              {"unquoted.key", "plain-value"},
                                              {"k", "1"},
                                              {"k", "2"}}));
  EXPECT_TRUE(parseStringsFile("// nothing\n/* here */").entries.empty());
}

TEST(StringsFileTest, Escapes) {
  EXPECT_EQ(valueOf(R"("k" = "say \"hi\" \\ there";)"), "say \"hi\" \\ there");
  EXPECT_EQ(valueOf(R"("k" = "a\nb\tc\rd";)"), "a\nb\tc\rd");
  EXPECT_EQ(valueOf(R"("k" = "it\'s";)"), "it's");
  EXPECT_EQ(valueOf(R"("k" = "x\0y";)"), std::string("x\0y", 3));
  EXPECT_EQ(valueOf(R"("k" = "\101\0601";)"), "A01");  // octal, at most three digits
  EXPECT_EQ(valueOf(R"("k" = "\U00e9\u00E9";)"), "éé");
  EXPECT_EQ(valueOf(R"("k" = "\U2193 \U2191";)"), "↓ ↑");
  EXPECT_EQ(valueOf(R"("k" = "\UD83D\UDE00";)"), "\xF0\x9F\x98\x80");  // a surrogate pair
  EXPECT_EQ(valueOf("\"k\" = \"CPU %1$.0f%%\";"), "CPU %1$.0f%%");     // placeholders stay as written
  EXPECT_EQ(valueOf("\"k\" = \"two\nlines\";"), "two\nlines");
  EXPECT_EQ(valueOf("\xEF\xBB\xBF\"k\" = \"v\";"), "v");  // a UTF-8 byte order mark is skipped
}

TEST(StringsFileTest, MalformedInputNamesTheLine) {
  struct Case {
    const char* text;
    int line;
    const char* message;
  };
  const Case cases[] = {
      {"\"a\" = \"1\";\n\"b\" = \"2\"\n\"c\" = \"3\";", 3, "expected ';'"},
      {"\"a\" = \"1\";\n\n\"b\" \"2\";", 3, "expected '=' or ';'"},
      {"\"a\" = \"unterminated;\n\n", 1, "unterminated string"},
      {"\"a\" = \"1\";\n/* never closed\n", 2, "unterminated /* comment"},
      {"\"a\" = ;", 1, "expected a value"},
      {"\"a\" =", 1, "end of the file"},
      {"\"a\" = \"x\\q\";", 1, "unknown escape '\\q'"},
      {"\n\"a\" = \"\\U12\";", 2, "four hexadecimal digits"},
      {"\"a\" = \"\\UD83D\";", 1, "high surrogate"},
      {"\"a\" = \"\\UD83Dx\";", 1, "high surrogate"},
      {"\"a\" = \"\\UDE00\";", 1, "low surrogate"},
      {"\"a\" = \"x\\", 1, "'\\' at the end"},
      {"= \"x\";", 1, "expected a key in double quotes, found '='"},
      {"\"a\" = \"1\";\n\"b\" = \"\xC3\";", 2, "UTF-8"},
      {"\"a\" = \"\xED\xA0\x80\";", 1, "UTF-8"},  // an encoded surrogate
      {"\"a\" = \"\xC0\xAF\";", 1, "UTF-8"},      // overlong
      {"bplist00\x01\x02", 1, "binary property list"},
  };
  for (const Case& c : cases) {
    const StringsParseError error = errorOf(c.text);
    EXPECT_EQ(error.line, c.line) << c.text;
    EXPECT_THAT(error.message, HasSubstr(c.message)) << c.text;
    EXPECT_THAT(error.describe(), HasSubstr("line " + std::to_string(c.line) + ": ")) << c.text;
  }
}

std::string utf16(std::u16string_view text, bool bigEndian) {
  std::string out = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char16_t unit : text) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    out += bigEndian ? high : low;
    out += bigEndian ? low : high;
  }
  return out;
}

TEST(StringsFileTest, Utf16WithByteOrderMark) {
  const std::u16string text = u"/* c */\n\"k\" = \"Größe 😀\";\n";
  for (const bool bigEndian : {false, true}) {
    const StringsFile file = parseStringsFile(utf16(text, bigEndian));
    ASSERT_TRUE(file.ok()) << file.error->describe();
    ASSERT_EQ(file.entries.size(), 1u);
    EXPECT_EQ(file.entries[0].second, "Größe 😀");
  }
  EXPECT_THAT(errorOf(utf16(u"\"k\" = \"x\";", false) + std::string(1, '\0')).message,
              HasSubstr("odd number"));
  const std::u16string lone = {u'"', u'k', u'"', u';', 0xD800, u'\n'};
  EXPECT_THAT(errorOf(utf16(lone, false)).message, HasSubstr("unpaired"));
}

TEST(StringsFileTest, ArbitraryBytesNeverCrash) {
  std::string bytes;
  for (int i = 0; i < 4096; ++i) bytes += static_cast<char>((i * 7919) % 256);
  std::vector<std::string> inputs = {std::string(100000, '"'), std::string(100000, '/') + "*",
                                     std::string(50000, '\\')};
  for (std::size_t cut = 0; cut < bytes.size(); cut += 97) inputs.push_back(bytes.substr(cut));
  for (const std::string& input : inputs) {
    const StringsFile file = parseStringsFile(input);
    if (!file.ok()) {
      EXPECT_GE(file.error->line, 1);
      EXPECT_FALSE(file.error->message.empty());
    }
  }
}

}  // namespace
}  // namespace quillmark
