#include "insights/insight_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/defaults_store.h"
#include "base/virtual_time.h"
#include "insights/testing/log_lines.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using Kind = Insight::Kind;

constexpr std::int32_t kOwnPid = 4242;

class InsightEngineTest : public ::testing::Test {
 protected:
  InsightEngineTest() : engine({clock, l10n, [this] { return level; }, [this] { return latest; }, kOwnPid}) {}

  // One accepted ingest 30 s after the previous one.
  void tick(const std::vector<ProcessSample>& processes,
            std::optional<AssertionMap> assertions = std::nullopt) {
    clock.advance(InsightEngine::kIngestInterval);
    engine.ingest(processes, assertions);
  }
  std::vector<std::pair<Kind, std::int32_t>> found() const {
    std::vector<std::pair<Kind, std::int32_t>> out;
    for (const auto& i : engine.insights()) out.emplace_back(i.kind, i.pid);
    return out;
  }

  VirtualClock clock;
  MemoryDefaultsStore store;
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  PressureLevel level = PressureLevel::normal;
  std::vector<ProcessSample> latest;
  InsightEngine engine;
};

constexpr std::uint64_t GB = 1'000'000'000;

TEST_F(InsightEngineTest, LeakNeedsTwentySamplesGrowthAbove768MiBAndEightyPercentRising) {
  const std::uint64_t exact = InsightEngine::kLeakGrowthBytes;
  std::uint64_t twoDips = GB, fourDips = GB;
  for (int i = 0; i < 20; ++i) {
    if (i > 0) {
      twoDips = (i == 5 || i == 12) ? twoDips - 10'000'000 : twoDips + 60'000'000;
      fourDips = (i == 3 || i == 7 || i == 11 || i == 15) ? fourDips - 10'000'000 : fourDips + 60'000'000;
    }
    const std::uint64_t rampExact = GB + exact * i / 19;
    const std::uint64_t rampAbove = GB + (exact + 1) * i / 19;
    EXPECT_THAT(engine.insights(), IsEmpty()) << "not before the 20th sample";
    tick({{10, "twoDips", 50, twoDips},
          {11, "fourDips", 50, fourDips},
          {12, "exact", 50, rampExact},
          {13, "above", 50, rampAbove}});
  }
  EXPECT_THAT(found(), ElementsAre(std::pair{Kind::leak, 10}, std::pair{Kind::leak, 13}));
  EXPECT_EQ(engine.insights()[0].message,
            "twoDips keeps growing (+953.7 MB in the last minutes) and may be leaking memory.");
  EXPECT_FALSE(engine.insights()[0].reclaimBytes);
}

TEST_F(InsightEngineTest, IdleHogAfterTwentyIdleIngestsResetByOneBusySampleOrAReusedPid) {
  for (int i = 0; i < 19; ++i) tick({{7, "hog", 1.4, 2 * GB, 100}});
  // Another program that took pid 7 (a later start) begins its own streak.
  tick({{7, "hog", 1.4, 2 * GB, 200}});
  for (int i = 0; i < 18; ++i) tick({{7, "hog", 1.4, 2 * GB, 200}});
  EXPECT_THAT(engine.insights(), IsEmpty());
  tick({{7, "hog", 1.4, 2 * GB, 200}});
  ASSERT_THAT(found(), ElementsAre(std::pair{Kind::idleHog, 7}));
  EXPECT_EQ(engine.insights()[0].reclaimBytes, 2 * GB);
  EXPECT_EQ(engine.insights()[0].message, "hog has been idle for a while but still holds 1.9 GB of memory.");
  tick({{7, "hog", 1.5, 2 * GB, 200}});
  EXPECT_THAT(engine.insights(), IsEmpty());
}

TEST_F(InsightEngineTest, RateLimitedIngestStillTakesNewAssertionsAndExitsForgetTheProcess) {
  tick({{5, "player", 3, GB}, {kOwnPid, "quillmark", 1, GB}});
  EXPECT_FALSE(engine.wantsProcessScan());
  clock.advance(10);
  // 10 s later: the processes are ignored (the new pid 6 gets no name), the assertions count.
  engine.ingest({{6, "late", 3, GB}}, AssertionMap{{5, {"PreventUserIdleSystemSleep", "Playback"}},
                                                   {6, {"NoIdleSleep"}},
                                                   {kOwnPid, {"ours"}}});
  ASSERT_THAT(found(), ElementsAre(std::pair{Kind::sleepBlocker, 5}, std::pair{Kind::sleepBlocker, 6}));
  EXPECT_EQ(engine.insights()[0].message,
            "player is keeping the computer from sleeping (PreventUserIdleSystemSleep, Playback).");
  EXPECT_EQ(engine.insights()[1].processName, "pid 6");
  clock.advance(20);
  EXPECT_TRUE(engine.wantsProcessScan());
  // Player exits: its name goes with it at the next accepted ingest (the assertion map is older).
  engine.ingest({{6, "late", 3, GB}}, std::nullopt);
  EXPECT_EQ(engine.insights()[0].processName, "pid 5");
  EXPECT_EQ(engine.insights()[1].processName, "late");
}

TEST_F(InsightEngineTest, CulpritShowsWhilePressureLastsForAtMostTenMinutes) {
  engine.captureCulprits(PressureLevel::warning);  // nothing scanned yet: nothing captured
  latest = {{3, "small", 1, GB}, {9, "big", 1, 3 * GB}, {4, "tie", 1, 3 * GB}};
  engine.captureCulprits(PressureLevel::warning);
  EXPECT_EQ(testing::logLinesWith("Pressure culprit snapshot: big (pid 9, 2.8 GB) at warning"), 1);
  EXPECT_THAT(engine.insights(), IsEmpty()) << "the level is still normal while capturing";
  level = PressureLevel::warning;
  const int updates = testing::logLinesWith("Diagnostics updated: [pressureCulprit] big");
  engine.refresh();
  ASSERT_THAT(found(), ElementsAre(std::pair{Kind::pressureCulprit, 9}));
  EXPECT_EQ(engine.insights()[0].reclaimBytes, 3 * GB);
  EXPECT_EQ(testing::logLinesWith("Diagnostics updated: [pressureCulprit] big"), updates + 1);
  engine.refresh();  // unchanged findings are not published or logged again
  EXPECT_EQ(testing::logLinesWith("Diagnostics updated: [pressureCulprit] big"), updates + 1);

  level = PressureLevel::normal;
  engine.refresh();
  EXPECT_THAT(engine.insights(), IsEmpty());
  level = PressureLevel::critical;
  clock.advance(599);
  engine.refresh();
  EXPECT_THAT(found(), ElementsAre(std::pair{Kind::pressureCulprit, 9}));
  clock.advance(1);
  engine.refresh();
  EXPECT_THAT(engine.insights(), IsEmpty());
}

}  // namespace
}  // namespace quillmark
