#include "views/process_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillmark {
namespace {

using Mode = PanelModel::SortMode;

std::vector<std::string> names(const std::vector<ProcessRow>& rows) {
  std::vector<std::string> out;
  for (const auto& r : rows) out.push_back(r.proc.name);
  return out;
}

TEST(ProcessRowsTest, OrderIdleFilterSearchAndPins) {
  PanelModel m;
  m.processes = {{10, "a", 5, 1},       {11, "b", 5, 3},      {12, "idle", 0.049, 9},
                 {13, "kept", 0.05, 2}, {14, "frozen", 0, 1}, {15, "Web Content Helper", 1, 1},
                 {16, "b", 0.5, 1}};
  m.pausedGroupOfPid = {{14, 14}};
  // Stable: equal loads keep scan order; under 0.05 % drops unless paused.
  EXPECT_THAT(names(rankedProcessRows(m, Mode::cpu, "", 12)),
              ::testing::ElementsAre("a", "b", "Web Content Helper", "b", "kept", "frozen"));
  EXPECT_THAT(names(rankedProcessRows(m, Mode::cpu, "WEB", 12)),
              ::testing::ElementsAre("Web Content Helper"));
  EXPECT_THAT(names(rankedProcessRows(m, Mode::cpu, "idl", 12)), ::testing::ElementsAre("idle"));
  // Only the highest-ranked process of a pinned name moves up.
  m.pins = {"b"};
  const auto rows = rankedProcessRows(m, Mode::cpu, "", 3);
  EXPECT_THAT(names(rows), ::testing::ElementsAre("b", "a", "Web Content Helper"));
  EXPECT_TRUE(rows[0].pinned);
  EXPECT_EQ(rows[2].rank, 3);
}

TEST(ProcessRowsTest, BarFractionsFollowTheSortMode) {
  PanelModel m;
  m.processes = {{10, "a", 250, 400}, {11, "b", 50, 100}};
  m.energyRows = {{20, "e", 35, 0}, {21, "f", 10, 0}};
  auto cpu = rankedProcessRows(m, Mode::cpu, "", 12);
  EXPECT_DOUBLE_EQ(cpu[0].barFraction, 1.0);
  EXPECT_DOUBLE_EQ(cpu[1].barFraction, 0.5);
  auto memory = rankedProcessRows(m, Mode::memory, "", 12);
  EXPECT_DOUBLE_EQ(memory[1].barFraction, 0.25);
  auto energy = rankedProcessRows(m, Mode::energy, "", 12);
  EXPECT_EQ(energy[0].proc.name, "e");
  EXPECT_DOUBLE_EQ(energy[0].barFraction, 1.0);
  EXPECT_DOUBLE_EQ(energy[1].barFraction, 0.5);
  m.processes.clear();
  EXPECT_TRUE(rankedProcessRows(m, Mode::cpu, "", 12).empty());
  EXPECT_EQ(rankedProcessRows(m, Mode::energy, "", 12).size(), 2u);
}

}  // namespace
}  // namespace quillmark
