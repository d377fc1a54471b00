#include "settings/format.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/l10n.h"
#include "settings/settings_types.h"
#include "settings/testing/temp_environment.h"

namespace quillmark {
namespace {

TEST(FormatTest, ByteStringBoundaries) {
  EXPECT_EQ(Format::byteString(0), "0 B");
  EXPECT_EQ(Format::byteString(1023), "1023 B");
  EXPECT_EQ(Format::byteString(1024), "1.0 KB");
  EXPECT_EQ(Format::byteString(1536), "1.5 KB");
  EXPECT_EQ(Format::byteString(1048575), "1024.0 KB");  // rounding by the format, not a unit change
  EXPECT_EQ(Format::byteString(1048576), "1.0 MB");
  EXPECT_EQ(Format::byteString(3435973837ULL), "3.2 GB");
  EXPECT_EQ(Format::byteString(1ULL << 40), "1.0 TB");
  EXPECT_EQ(Format::byteString(1ULL << 51), "2048.0 TB");
  EXPECT_EQ(Format::byteString(UINT64_MAX), "16777216.0 TB");
}

TEST(FormatTest, SpeedStringUsesDecimalMultiplesOnTheRawValue) {
  EXPECT_EQ(Format::speedString(0), "0 B/s");
  EXPECT_EQ(Format::speedString(999), "999 B/s");
  EXPECT_EQ(Format::speedString(1000), "1 KB/s");
  EXPECT_EQ(Format::speedString(14'200), "14 KB/s");
  EXPECT_EQ(Format::speedString(999'999), "1000 KB/s");
  EXPECT_EQ(Format::speedString(1'000'000), "1.0 MB/s");
  EXPECT_EQ(Format::speedString(1'500'000), "1.5 MB/s");
  EXPECT_EQ(Format::speedString(-5000), "-5000 B/s");
  EXPECT_EQ(Format::speedString(0.0 / 0.0), "0 B/s");
}

TEST(FormatTest, CompactSpeed) {
  EXPECT_EQ(Format::compactSpeed(0), "0B");
  EXPECT_EQ(Format::compactSpeed(820), "820B");
  EXPECT_EQ(Format::compactSpeed(999.4), "999B");
  EXPECT_EQ(Format::compactSpeed(1000), "1K");
  EXPECT_EQ(Format::compactSpeed(14'000), "14K");
  EXPECT_EQ(Format::compactSpeed(2'300'000), "2.3M");
}

TEST(FormatTest, ClockTimeFollowsTheLocalesClockWithoutAMPM) {
  std::tm t{};
  t.tm_hour = 13;
  t.tm_min = 5;
  t.tm_sec = 9;
  EXPECT_EQ(Format::clockTime(t, "%r"), "01:05:09");        // en_US
  EXPECT_EQ(Format::clockTime(t, "%T"), "13:05:09");        // de_DE
  EXPECT_EQ(Format::clockTime(t, "%H.%M.%S"), "13.05.09");  // fi_FI
  EXPECT_EQ(Format::clockTime(t, "%p %l:%M:%S"), "01:05:09");
  EXPECT_EQ(Format::clockTime(t, ""), "13:05:09");
  t.tm_hour = 0;  // midnight and noon are 12 on a 12-hour clock
  EXPECT_EQ(Format::clockTime(t, "%r"), "12:05:09");
  t.tm_hour = 12;
  EXPECT_EQ(Format::clockTime(t, "%r"), "12:05:09");
  t.tm_hour = 7;
  EXPECT_THAT(Format::currentTime(), ::testing::MatchesRegex("[0-2][0-9]:[0-5][0-9]:[0-6][0-9]"));
  // macOS hands over a Unicode pattern.
  EXPECT_EQ(Format::timeFormatFromPattern("h:mm:ss a"), "%I:%M:%S %p");
  EXPECT_EQ(Format::timeFormatFromPattern("HH'h'mm'' ss"), "%Hh%M' %S");
  EXPECT_EQ(Format::clockTime(t, Format::timeFormatFromPattern("HH.mm.ss")), "07.05.09");
}

TEST(FormatTest, TemperatureDisplayRoundsHalvesAwayFromZero) {
  EXPECT_EQ(display(TempUnit::celsius, 36.6), 37);
  EXPECT_EQ(display(TempUnit::fahrenheit, 36.6), 98);  // 97.88
  EXPECT_EQ(display(TempUnit::celsius, 0.5), 1);
  EXPECT_EQ(display(TempUnit::celsius, -0.5), -1);
  EXPECT_EQ(display(TempUnit::celsius, 1.49), 1);
  EXPECT_EQ(display(TempUnit::fahrenheit, -40.0), -40);
  EXPECT_EQ(display(TempUnit::fahrenheit, 100.0), 212);
  EXPECT_EQ(display(TempUnit::celsius, 1e30), 0);
  EXPECT_EQ(display(TempUnit::celsius, 0.0 / 0.0), 0);
  EXPECT_EQ(symbol(TempUnit::celsius), "°");
  EXPECT_EQ(symbol(TempUnit::fahrenheit), "°F");
}

TEST(FormatTest, CompareVersions) {
  EXPECT_EQ(compareVersions("2.0", "10.0"), ComparisonResult::ascending);
  EXPECT_EQ(compareVersions("1.10", "1.9"), ComparisonResult::descending);
  EXPECT_EQ(compareVersions("1.2", "1.2.0"), ComparisonResult::same);
  EXPECT_EQ(compareVersions("1..2", "1.2"), ComparisonResult::same);
  EXPECT_EQ(compareVersions("1.3b", "1.0"), ComparisonResult::same);  // "3b" counts as 0
  EXPECT_EQ(compareVersions("1.2.1", "1.2"), ComparisonResult::descending);
  EXPECT_EQ(compareVersions("", "0.0"), ComparisonResult::same);
  EXPECT_EQ(compareVersions("99999999999999999999", "1"), ComparisonResult::ascending);  // overflow is 0
}

// Texts with words: the tables here print the arguments plainly, so the tests see exactly what
// was passed.
class LocalizedFormatTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::string dir = testing::makeTempDirectory();
    testing::writeTestFile(dir + "/en.lproj/Localizable.strings",
                           "\"format.uptime.minutes\" = \"min %1$d sec %2$d\";\n"
                           "\"format.uptime.hours\" = \"hr %1$d min %2$d\";\n"
                           "\"format.uptime.days\" = \"day %1$d hr %2$d\";\n"
                           "\"format.duration.seconds\" = \"s %.3f\";\n"
                           "\"format.duration.minSec\" = \"m %1$.3f s %2$.3f\";\n"
                           "\"format.duration.hourMin\" = \"h %1$d m %2$d\";\n"
                           "\"format.relative.justNow\" = \"now\";\n"
                           "\"format.relative.minutesAgo\" = \"%d min ago\";\n"
                           "\"format.relative.hoursAgo\" = \"%d h ago\";\n"
                           "\"format.relative.daysAgo\" = \"%d d ago\";\n");
    l10n = std::make_unique<L10n>(store, dir, std::vector<std::string>{"en"});
  }
  MemoryDefaultsStore store;
  std::unique_ptr<L10n> l10n;
};

TEST_F(LocalizedFormatTest, UptimeBoundaries) {
  EXPECT_EQ(Format::uptime(59.9, *l10n), "min 0 sec 59");
  EXPECT_EQ(Format::uptime(3599.99, *l10n), "min 59 sec 59");
  EXPECT_EQ(Format::uptime(3600, *l10n), "hr 1 min 0");
  EXPECT_EQ(Format::uptime(86'399, *l10n), "hr 23 min 59");
  EXPECT_EQ(Format::uptime(86'400, *l10n), "day 1 hr 0");
  EXPECT_EQ(Format::uptime(3 * 86'400 + 5 * 3600 + 59, *l10n), "day 3 hr 5");
  EXPECT_EQ(Format::uptime(-3, *l10n), "min 0 sec 0");
}

TEST_F(LocalizedFormatTest, CpuTimeBoundaries) {
  using ProcessDetailReader::cpuTimeString;
  EXPECT_EQ(cpuTimeString(1'500'000'000, *l10n), "s 1.500");
  EXPECT_EQ(cpuTimeString(59'999'000'000, *l10n), "s 59.999");
  EXPECT_EQ(cpuTimeString(60'000'000'000, *l10n), "m 1.000 s 0.000");
  EXPECT_EQ(cpuTimeString(90'000'000'000, *l10n), "m 1.500 s 30.000");  // minutes keep their fraction
  EXPECT_EQ(cpuTimeString(3'599'000'000'000, *l10n), "m 59.983 s 59.000");
  EXPECT_EQ(cpuTimeString(3'600'000'000'000, *l10n), "h 1 m 0");
  EXPECT_EQ(cpuTimeString(7'259'000'000'000, *l10n), "h 2 m 0");
  EXPECT_EQ(cpuTimeString(7'260'000'000'000, *l10n), "h 2 m 1");
}

TEST_F(LocalizedFormatTest, CpuTimeUsesTheLanguageDecimalSeparator) {
  l10n->language.set(AppLanguage::de);  // no German table here: English text, German numbers
  EXPECT_EQ(ProcessDetailReader::cpuTimeString(1'500'000'000, *l10n), "s 1,500");
}

TEST_F(LocalizedFormatTest, RelativeTimeBoundaries) {
  using ProcessDetailReader::relativeTime;
  const double now = 1'700'000'000;
  EXPECT_EQ(relativeTime(std::nullopt, now, *l10n), "—");
  EXPECT_EQ(relativeTime(now + 60, now, *l10n), "now");  // a minute in the future
  EXPECT_EQ(relativeTime(now - 59.9, now, *l10n), "now");
  EXPECT_EQ(relativeTime(now - 60, now, *l10n), "1 min ago");
  EXPECT_EQ(relativeTime(now - 3599, now, *l10n), "59 min ago");
  EXPECT_EQ(relativeTime(now - 3600, now, *l10n), "1 h ago");
  EXPECT_EQ(relativeTime(now - 86'399, now, *l10n), "23 h ago");
  EXPECT_EQ(relativeTime(now - 86'400, now, *l10n), "1 d ago");
  EXPECT_EQ(relativeTime(now - 10 * 86'400 - 5, now, *l10n), "10 d ago");
}

}  // namespace
}  // namespace quillmark
