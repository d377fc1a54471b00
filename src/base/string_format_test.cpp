#include "base/string_format.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace quillmark {
namespace {

const NumberStyle kComma{','};

TEST(StringFormatTest, PlainAndPositionalPlaceholdersTakeTheirArguments) {
  EXPECT_EQ(formatString("%@ has %d threads, %ld files", {"Safari", 12, 4000000000LL}),
            "Safari has 12 threads, 4000000000 files");
  EXPECT_EQ(formatString("%.1f W", {12.345}), "12.3 W");
  EXPECT_EQ(formatString("%f", {1.5}), "1.500000");
  EXPECT_EQ(formatString("%.0f s", {2.5}), "2 s");  // round-half-even, as printf
  EXPECT_EQ(formatString("%.0f s", {3.5}), "4 s");
  // %% is one literal percent.
  EXPECT_EQ(formatString("CPU %1$.0f%% MEM %2$.0f%%", {12.4, 63.6}), "CPU 12% MEM 64%");
  EXPECT_EQ(formatString("100%%", {}), "100%");
  EXPECT_EQ(formatString("%%d", {5}), "%d");
  // Positions may reorder and repeat; plain placeholders count only the plain ones.
  EXPECT_EQ(formatString("%2$@ / %1$@", {"first", "second"}), "second / first");
  EXPECT_EQ(formatString("%2$.1f then %1$d", {7, 2.25}), "2.2 then 7");
  EXPECT_EQ(formatString("%1$d %1$d", {3}), "3 3");
  EXPECT_EQ(formatString("%2$@ %@", {"a", "b"}), "b a");
}

TEST(StringFormatTest, DecimalSeparatorFollowsStyleButIntegersNeverGroup) {
  EXPECT_EQ(formatString("%.1f W", {12.345}, kComma), "12,3 W");
  EXPECT_EQ(formatString("%2$.1f %1$d", {123456, 0.5}, kComma), "0,5 123456");
  EXPECT_EQ(formatString("%@", {"1.5"}, kComma), "1.5");  // strings are left alone
  EXPECT_EQ(formatString("%e", {1500.0}, kComma), "1,500000e+03");
}

TEST(StringFormatTest, LanguagesWithDecimalComma) {
  for (const char* code : {"de", "fr", "es", "de-DE", "fr_CA"}) {
    EXPECT_EQ(NumberStyle::forLanguageCode(code).decimalSeparator, ',') << code;
  }
  for (const char* code : {"en", "ja", "ko", "th", "zh-Hans", "zh-Hant", "", "desert"}) {
    EXPECT_EQ(NumberStyle::forLanguageCode(code).decimalSeparator, '.') << code;
  }
}

// Missing, extra, mismatched arguments and broken placeholders: shown as written, ignored or
// converted, never misread from the wrong argument.
TEST(StringFormatTest, BadArgumentsAndPlaceholdersAreNeverMisread) {
  EXPECT_EQ(formatString("%1$d of %2$d", {5}), "5 of %2$d");
  EXPECT_EQ(formatString("%@ and %@", {"x"}), "x and %@");
  EXPECT_EQ(formatString("%.1f%%", {}), "%.1f%");
  EXPECT_EQ(formatString("Just now", {1, 2.0, "three"}), "Just now");
  EXPECT_EQ(formatString("%d", {3.9}), "3");
  EXPECT_EQ(formatString("%d", {-3.9}), "-3");
  EXPECT_EQ(formatString("%d", {1e300}), "0");
  EXPECT_EQ(formatString("%.1f", {7}), "7.0");
  EXPECT_EQ(formatString("%@", {42}), "42");
  EXPECT_EQ(formatString("%@", {2.5}, kComma), "2,5");
  EXPECT_EQ(formatString("%d|%.1f", {"text", "text"}), "0|0.0");
  for (const char* broken : {"50%", "%*d", "%0$d", "%1$", "%.", "%99999$d"})
    EXPECT_EQ(formatString(broken, {4, 5}), broken);
  EXPECT_EQ(formatString("%k and %d", {4}), "%k and 4");
}

TEST(StringFormatTest, HugeWidthAndPrecisionAreClamped) {
  const std::string wide = formatString("%999999999999d", {1});
  EXPECT_EQ(wide.size(), 256u);
  const std::string precise = formatString("%.99999f", {1e308});
  EXPECT_LT(precise.size(), 400u);
}

TEST(StringFormatTest, FlagsWidthAndPrecision) {
  EXPECT_EQ(formatString("[%5d]", {42}), "[   42]");
  EXPECT_EQ(formatString("[%-5d]", {42}), "[42   ]");
  EXPECT_EQ(formatString("[%05d]", {-42}), "[-0042]");
  EXPECT_EQ(formatString("[%+d]", {42}), "[+42]");
  EXPECT_EQ(formatString("[%.3d]", {7}), "[007]");
  EXPECT_EQ(formatString("[%6.2f]", {3.14159}, kComma), "[  3,14]");
  EXPECT_EQ(formatString("[%#x %X %o]", {255, 255, 8}), "[0xff FF 10]");
  EXPECT_EQ(formatString("[%4@]", {"é"}), "[   é]");  // width counts characters, not bytes
}

TEST(StringFormatTest, ExtremeNumbers) {
  EXPECT_EQ(formatString("%ld", {-9223372036854775807LL - 1}), "-9223372036854775808");
  EXPECT_EQ(formatString("%lu", {18446744073709551615ULL}), "18446744073709551615");
  EXPECT_EQ(formatString("%x", {-1}), "ffffffffffffffff");
  EXPECT_EQ(formatString("%.1f", {-0.04}), "-0.0");
  EXPECT_EQ(formatString("%f|%F", {1.0 / 0.0, -1.0 / 0.0}), "inf|-INF");
  EXPECT_EQ(formatString("%05.1f", {0.0 / 0.0}), "  nan");
}

TEST(StringFormatTest, SafeFromManyThreadsAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int> failures(8, 0);
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t, &failures] {
      const NumberStyle style{t % 2 ? ',' : '.'};
      const std::string expected = t % 2 ? "1,5 x" : "1.5 x";
      for (int i = 0; i < 2000; ++i) {
        if (formatString("%.1f %@", {1.5, "x"}, style) != expected) ++failures[static_cast<std::size_t>(t)];
      }
    });
  }
  for (auto& thread : threads) thread.join();
  for (int f : failures) EXPECT_EQ(f, 0);
}

}  // namespace
}  // namespace quillmark
