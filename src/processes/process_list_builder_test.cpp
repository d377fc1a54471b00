#include "processes/process_list_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/virtual_time.h"
#include "processes/pin_store.h"

namespace quillmark {
namespace {

std::vector<std::int32_t> pids(const std::vector<ProcessSample>& rows) {
  std::vector<std::int32_t> out;
  for (const auto& row : rows) out.push_back(row.pid);
  return out;
}

using ProcessListBuilder::build;
using ::testing::ElementsAre;

TEST(ProcessListBuilderTest, SortsStablyAndDropsIdleRowsOnlyInCpuOrder) {
  const std::vector<ProcessSample> rows = {
      {1, "a", 5, 10}, {2, "b", 0.049, 30}, {3, "c", 5, 20}, {4, "d", 0.05, 40}, {5, "frozen", 0, 5}};
  ProcessListBuilder::Context context{[](std::int32_t pid) { return pid == 5; }, nullptr};
  EXPECT_THAT(pids(build(rows, {}, ProcessSortMode::cpu, "", context)), ElementsAre(1, 3, 4, 5));
  EXPECT_THAT(pids(build(rows, {}, ProcessSortMode::memory, "", context)), ElementsAre(4, 2, 3, 1, 5));
  // A search makes idle rows findable.
  EXPECT_THAT(pids(build(rows, {}, ProcessSortMode::cpu, "b", context)), ElementsAre(2));
  // Energy lists its own rows, even with no processes.
  EXPECT_THAT(pids(build({}, {{9, "e", 35, 0}, {8, "f", 36, 0}}, ProcessSortMode::energy, "", context)),
              ElementsAre(8, 9));
}

TEST(ProcessListBuilderTest, SearchIgnoresCaseBeyondAscii) {
  const std::vector<ProcessSample> rows = {
      {1, "Web Content Helper", 1, 0}, {2, "ÄRGER", 1, 0}, {3, "Straße", 1, 0}, {4, "arger", 1, 0}};
  ProcessListBuilder::Context none;
  EXPECT_THAT(pids(build(rows, {}, ProcessSortMode::cpu, "web", none)), ElementsAre(1));
  EXPECT_THAT(pids(build(rows, {}, ProcessSortMode::cpu, "ärg", none)), ElementsAre(2));
  EXPECT_THAT(pids(build(rows, {}, ProcessSortMode::cpu, "STRASSE", none)), ElementsAre(3));
  EXPECT_THAT(pids(build(rows, {}, ProcessSortMode::cpu, " web", none)), ElementsAre()) << "used as typed";
}

TEST(ProcessListBuilderTest, MovesTheFirstRowOfEachPinnedNameUpAndRanks) {
  MemoryDefaultsStore defaults;
  VirtualClock clock;
  PinStore pins(defaults, clock);
  pins.toggle("helper");
  const std::vector<ProcessSample> rows = {{1, "a", 50, 100},
                                           {2, "helper", 40, 400},
                                           {3, "b", 30, 50},
                                           {4, "helper", 20, 0},
                                           {5, "helper", 10, 0}};
  const auto list = build(rows, {}, ProcessSortMode::cpu, "", {nullptr, &pins});
  EXPECT_THAT(pids(list), ElementsAre(2, 1, 3, 4, 5));

  const auto ranked = ProcessListBuilder::rank(list, 3);
  ASSERT_EQ(ranked.size(), 3u);
  EXPECT_EQ(ranked[2].rank, 3);
  EXPECT_EQ(ranked[2].id(), 3);
  EXPECT_TRUE(ProcessListBuilder::rank({}, 12).empty());
  EXPECT_DOUBLE_EQ(ProcessListBuilder::barFraction(ranked[1].proc, ProcessSortMode::memory, ranked), 0.25);
  EXPECT_DOUBLE_EQ(ProcessListBuilder::barFraction({1, "x", 250, 0}, ProcessSortMode::cpu, ranked), 1.0);
  EXPECT_DOUBLE_EQ(ProcessListBuilder::barFraction({1, "x", 35, 0}, ProcessSortMode::energy, ranked), 1.0);
  EXPECT_DOUBLE_EQ(ProcessListBuilder::barFraction({1, "x", 5, 0}, ProcessSortMode::energy, ranked), 0.25);
}

}  // namespace
}  // namespace quillmark
