#include "insights/pressure_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "insights/psi_levels.h"
#include "insights/testing/log_lines.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;

class FakeSource final : public PressureSource {
 public:
  explicit FakeSource(int& starts) : starts_(starts) {}
  void start(std::function<void(PressureLevel)> onLevel) override {
    ++starts_;
    report = std::move(onLevel);
  }
  std::function<void(PressureLevel)> report;

 private:
  int& starts_;
};

TEST(PressureMonitorTest, RiseCapturesOnceBeforePublishingFallAndRepeatDoNot) {
  int starts = 0;
  auto source = std::make_unique<FakeSource>(starts);
  FakeSource* fake = source.get();
  std::vector<std::pair<PressureLevel, PressureLevel>> captures;  // (captured level, level at the time)
  PressureMonitor* monitorPtr = nullptr;
  PressureMonitor monitor(std::move(source),
                          [&](PressureLevel level) { captures.emplace_back(level, monitorPtr->level()); });
  monitorPtr = &monitor;
  monitor.start();
  monitor.start();
  EXPECT_EQ(starts, 1);

  const int changes = testing::logLinesWith("Memory pressure changed: ");
  fake->report(PressureLevel::critical);
  fake->report(PressureLevel::critical);
  fake->report(PressureLevel::warning);
  EXPECT_THAT(captures, ElementsAre(std::pair{PressureLevel::critical, PressureLevel::normal}));
  EXPECT_EQ(monitor.level(), PressureLevel::warning);
  EXPECT_EQ(testing::logLinesWith("Memory pressure changed: normal → critical"), 1);
  EXPECT_EQ(testing::logLinesWith("Memory pressure changed: "), changes + 2);
}

TEST(PressureMonitorTest, DispatchFlagsReadAsTheWorstEventPresent) {
  EXPECT_EQ(levelFromDispatchFlags(0x1), PressureLevel::normal);
  EXPECT_EQ(levelFromDispatchFlags(0x0), PressureLevel::normal);
  EXPECT_EQ(levelFromDispatchFlags(0x2 | 0x1), PressureLevel::warning);
  EXPECT_EQ(levelFromDispatchFlags(0x4 | 0x2), PressureLevel::critical);
}

TEST(PsiParseTest, ReadsKernelTextAndRejectsDamage) {
  const auto r = parsePsi(
      "some avg10=12.50 avg60=3.20 avg300=0.81 total=123456789\n"
      "full avg10=4.00 avg60=1.00 avg300=0.20 total=2345\n");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->some, (PsiLine{12.5, 3.2, 0.81, 123456789}));
  ASSERT_TRUE(r->full);
  EXPECT_EQ(r->full->avg10, 4.0);
  // An old kernel's file has no "full" line.
  const auto someOnly = parsePsi("some avg10=0.00 avg60=0.00 avg300=0.00 total=0\n");
  ASSERT_TRUE(someOnly);
  EXPECT_FALSE(someOnly->full);
  EXPECT_FALSE(parsePsi(""));
  EXPECT_FALSE(parsePsi("full avg10=1.00 avg60=0.00 avg300=0.00 total=0\n"));
  EXPECT_FALSE(parsePsi("some avg10=abc avg60=0.00 avg300=0.00 total=0\n"));
  EXPECT_FALSE(parsePsi("some avg10=-1 avg60=0 avg300=0 total=0\n"));
  EXPECT_FALSE(parsePsi("some avg60=0.00 avg300=0.00 total=0\n"));
}

PsiReading reading(double some10, double full10) {
  return PsiReading{{some10, 0, 0, 0}, PsiLine{full10, 0, 0, 0}};
}

TEST(PsiLevelRulesTest, EntersAtOnceLeavesOnlyAfterTenCalmSeconds) {
  PsiLevelRules rules;
  double t = 0;
  auto feed = [&](double some, double full) {
    t += 2;
    return rules.feed(t, reading(some, full));
  };
  EXPECT_EQ(feed(9.99, 0), PressureLevel::normal);
  EXPECT_EQ(feed(10.0, 0), PressureLevel::warning);
  // Hovering around the threshold does not flap: 6 % is still above the hold line.
  EXPECT_EQ(feed(9.0, 0), PressureLevel::warning);
  EXPECT_EQ(feed(6.0, 0), PressureLevel::warning);
  EXPECT_EQ(feed(11.0, 0), PressureLevel::warning);
  EXPECT_FALSE(rules.calm());
  // Below 5 %: the calm starts at the first such reading and must last 10 s.
  EXPECT_EQ(feed(4.0, 0), PressureLevel::warning);  // t = 12, calm since 12
  EXPECT_EQ(feed(3.0, 0), PressureLevel::warning);  // 14
  EXPECT_EQ(feed(5.5, 0), PressureLevel::warning);  // back above the hold line: calm restarts
  for (int i = 0; i < 5; ++i) EXPECT_EQ(feed(1.0, 0), PressureLevel::warning) << i;  // 18..26
  EXPECT_EQ(feed(1.0, 0), PressureLevel::normal);                                    // 28: 10 s after 18
  EXPECT_TRUE(rules.calm());

  // Critical follows "full"; its calm may end in warning when "some" still holds it up.
  EXPECT_EQ(feed(30, 12), PressureLevel::critical);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(feed(20, 1), PressureLevel::critical) << i;
  EXPECT_EQ(feed(20, 1), PressureLevel::warning);
  // And straight to normal when everything calmed down at once.
  EXPECT_EQ(feed(30, 12), PressureLevel::critical);
  for (int i = 0; i < 6; ++i) (void)feed(0, 0);
  EXPECT_EQ(rules.level(), PressureLevel::normal);
}

}  // namespace
}  // namespace quillmark
