#include "base/utf8.h"

#include <gtest/gtest.h>

namespace quillmark {
namespace {

TEST(Utf8Test, WellFormedTextPassesAndEveryMalformedByteBecomesOneReplacement) {
  EXPECT_EQ(repairUtf8("caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"),
            "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
  EXPECT_EQ(repairUtf8("abc\xE2\x82"), "abc\xEF\xBF\xBD\xEF\xBF\xBD");            // cut inside a character
  EXPECT_EQ(repairUtf8("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");                  // overlong '/'
  EXPECT_EQ(repairUtf8("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");  // encoded surrogate
  EXPECT_EQ(repairUtf8("\xF4\x90\x80\x80x").size(), 4u * 3 + 1);                  // past U+10FFFF
  EXPECT_EQ(repairUtf8("\x80x"), "\xEF\xBF\xBDx");                                // stray continuation
  EXPECT_EQ(repairUtf8(""), "");
}

TEST(Utf8Test, CharacterLengthsAtTheBoundariesOfEachForm) {
  EXPECT_EQ(utf8CharacterLength("\x7F", 0), 1u);
  EXPECT_EQ(utf8CharacterLength("\xC2\x80", 0), 2u);          // U+0080, smallest two-byte
  EXPECT_EQ(utf8CharacterLength("\xE0\xA0\x80", 0), 3u);      // U+0800
  EXPECT_EQ(utf8CharacterLength("\xE0\x9F\xBF", 0), 0u);      // U+07FF in three bytes: overlong
  EXPECT_EQ(utf8CharacterLength("\xF4\x8F\xBF\xBF", 0), 4u);  // U+10FFFF, the last character
  EXPECT_EQ(utf8CharacterLength("\xF8\x88\x80\x80\x80", 0), 0u);
}

}  // namespace
}  // namespace quillmark
