#include "views/panel_model_json.h"

#include <gtest/gtest.h>

namespace quillmark {
namespace {

TEST(PanelModelJsonTest, LastLineShowsEarlierLinesChartAndNullsStayAbsent) {
  const std::string lines =
      R"({"cpu":{"total":10,"perCore":[10]},"memory":{"total":100,"app":50},"diskTotal":0,"diskFree":0})"
      "\n"
      "not json at all\n"
      R"({"cpu":{"total":30,"perCore":[20,40]},"network":{"downBps":2048,"upBps":null},"diskTotal":500,)"
      R"("diskFree":200,"thermal":{"cpuC":null,"gpuC":41.5},"gpu":null,"battery":{"percentage":null},)"
      R"("processes":[{"pid":7,"name":"quillmark","cpuPercent":1.5,"memoryBytes":4096},{"pid":"x"}]})";
  std::string error;
  const auto model = panelModelFromJsonLines(lines, error);
  ASSERT_TRUE(model) << error;
  EXPECT_EQ(model->cpu.total, 30);
  EXPECT_EQ(model->cpu.perCore.size(), 2u);
  EXPECT_EQ(model->cpuHistory, (std::vector<double>{10, 30}));
  EXPECT_EQ(model->downHistory.back(), 2);  // KiB/s, as the monitor keeps it
  EXPECT_EQ(model->diskTotal, 500u);
  EXPECT_FALSE(model->thermal.cpuC);
  EXPECT_EQ(model->thermal.gpuC, 41.5);
  EXPECT_FALSE(model->gpu);
  EXPECT_FALSE(model->battery.percentage);
  EXPECT_EQ(model->network.upBps, 0);  // the sample type has no absent rate
  EXPECT_EQ(model->selfCpuPercent, 1.5);
  EXPECT_EQ(model->processes.size(), 2u);
  EXPECT_EQ(model->processes[1].pid, 0);  // a malformed row is kept with safe defaults
}

TEST(PanelModelJsonTest, NothingUsableIsAnError) {
  std::string error;
  EXPECT_FALSE(panelModelFromJsonLines("", error));
  EXPECT_FALSE(panelModelFromJsonLines("[1,2]\n{oops\n", error));
  EXPECT_NE(error.find("line 2"), std::string::npos);
  // A disk total of 0 is an unread volume, not an empty one.
  const auto model = panelModelFromJsonLines(R"({"diskTotal":0,"diskFree":0})", error);
  ASSERT_TRUE(model);
  EXPECT_FALSE(model->diskTotal);
  EXPECT_FALSE(model->diskFree);
  EXPECT_FALSE(model->cpuKnown);
  // CPU that could not be read is no value, and adds no point to the chart.
  const auto unread = panelModelFromJsonLines(R"({"cpu":{"total":5}})"
                                              "\n"
                                              R"({"cpu":null,"memory":null})",
                                              error);
  ASSERT_TRUE(unread);
  EXPECT_FALSE(unread->cpuTotal());
  EXPECT_EQ(unread->cpuHistory, std::vector<double>{5});
}

}  // namespace
}  // namespace quillmark
