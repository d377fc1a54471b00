#include "base/virtual_time.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillmark {
namespace {

TEST(VirtualMainLoopTest, TimersAndDelayedWorkFireInTimeOrderAtTheirDueTime) {
  VirtualClock clock;
  VirtualMainLoop loop(clock);
  const double t0 = clock.monotonicNow();
  std::vector<std::pair<char, double>> fired;
  const auto timer = loop.addRepeatingTimer(2.0, [&] { fired.emplace_back('T', clock.monotonicNow() - t0); });
  loop.postAfter(3.0, [&] { fired.emplace_back('D', clock.monotonicNow() - t0); });
  loop.post([&] { fired.emplace_back('P', clock.monotonicNow() - t0); });

  loop.advance(5.0);
  EXPECT_EQ(fired, (std::vector<std::pair<char, double>>{{'P', 0}, {'T', 2}, {'D', 3}, {'T', 4}}));
  EXPECT_DOUBLE_EQ(clock.monotonicNow() - t0, 5.0);

  loop.cancelTimer(timer);
  loop.advance(10.0);
  EXPECT_EQ(fired.size(), 4u);
  EXPECT_EQ(loop.activeTimers(), 0u);
}

TEST(VirtualMainLoopTest, ATimerMayCancelItselfAndWorkPostedByTasksRuns) {
  VirtualClock clock;
  VirtualMainLoop loop(clock);
  int fires = 0;
  int followUps = 0;
  MainLoop::TimerId timer = 0;
  timer = loop.addRepeatingTimer(1.0, [&] {
    if (++fires == 2) loop.cancelTimer(timer);
    loop.post([&] { ++followUps; });
  });
  loop.advance(10.0);
  EXPECT_EQ(fires, 2);
  EXPECT_EQ(followUps, 2);
}

TEST(ManualSerialQueueTest, HoldsJobsUntilRunAndRunsThoseSubmittedMeanwhile) {
  ManualSerialQueue queue;
  std::vector<int> order;
  queue.async([&] {
    order.push_back(1);
    queue.async([&] { order.push_back(3); });
  });
  queue.async([&] { order.push_back(2); });
  EXPECT_EQ(queue.pending(), 2u);
  EXPECT_TRUE(order.empty());
  EXPECT_EQ(queue.runAll(), 3);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

}  // namespace
}  // namespace quillmark
