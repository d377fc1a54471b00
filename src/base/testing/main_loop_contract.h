#pragma once

// What every MainLoop must do, run against each one (poll, GLib) with real threads and real time,
// so these check ordering, hand-off and clean-up, never durations. A test file instantiates it:
//   INSTANTIATE_TYPED_TEST_SUITE_P(Poll, MainLoopContract, PollMainLoop);

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "base/main_loop.h"

namespace quillmark {

template <class Loop>
class MainLoopContract : public ::testing::Test {};
TYPED_TEST_SUITE_P(MainLoopContract);

TYPED_TEST_P(MainLoopContract, WorkPostedFromOtherThreadsRunsOnTheLoopThreadInOrder) {
  TypeParam loop;
  std::vector<int> seen;
  std::vector<std::thread::id> ranOn;
  std::thread::id loopThread;
  std::thread poster;
  loop.post([&] {
    loopThread = std::this_thread::get_id();
    poster = std::thread([&] {
      for (int i = 0; i < 200; ++i) {
        loop.post([&, i] {
          seen.push_back(i);
          ranOn.push_back(std::this_thread::get_id());
          if (i == 199) loop.quit();
        });
      }
    });
  });
  loop.run();
  poster.join();
  ASSERT_EQ(seen.size(), 200u);
  for (int i = 0; i < 200; ++i) EXPECT_EQ(seen[i], i);
  for (auto id : ranOn) EXPECT_EQ(id, loopThread);
}

TYPED_TEST_P(MainLoopContract, TimersRepeatUntilCancelledEvenFromTheirOwnTaskAndDelayedWorkRunsInDueOrder) {
  TypeParam loop;
  int fast = 0, slow = 0;
  std::vector<int> delayed;
  MainLoop::TimerId slowTimer = loop.addRepeatingTimer(0.005, [&] { ++slow; });
  MainLoop::TimerId fastTimer = 0;
  fastTimer = loop.addRepeatingTimer(0.002, [&] {
    if (++fast < 3) return;
    loop.cancelTimer(fastTimer);
    loop.cancelTimer(slowTimer);
    const int slowAtCancel = slow;
    // Posted in the reverse of their due order: they run by due time.
    loop.postAfter(0.04, [&, slowAtCancel] {
      delayed.push_back(2);
      EXPECT_EQ(slow, slowAtCancel);  // a cancelled timer never fires again
      loop.quit();
    });
    loop.postAfter(0.01, [&] { delayed.push_back(1); });
  });
  loop.run();
  EXPECT_EQ(fast, 3);
  EXPECT_EQ(delayed, (std::vector<int>{1, 2}));
}

TYPED_TEST_P(MainLoopContract, WatchesSeeReadableAndWritableDescriptorsAndStopWhenUnwatched) {
  TypeParam loop;
  int fds[2];
  ASSERT_EQ(pipe2(fds, O_CLOEXEC | O_NONBLOCK), 0);
  std::string received;
  int writableCalls = 0;
  loop.watchReadable(fds[0], [&] {
    char buffer[16];
    const ssize_t n = read(fds[0], buffer, sizeof buffer);
    if (n > 0) received.append(buffer, static_cast<size_t>(n));
    if (received == "ping") {
      loop.unwatch(fds[0]);  // from its own task
      // Were the watch still there, the pending byte would call it again before this runs.
      ASSERT_EQ(write(fds[1], "x", 1), 1);
      loop.postAfter(0.05, [&] { loop.quit(); });
    }
  });
  loop.watchWritable(fds[1], [&] {
    ++writableCalls;
    loop.unwatch(fds[1]);
    ASSERT_EQ(write(fds[1], "ping", 4), 4);
  });
  loop.run();
  EXPECT_EQ(received, "ping");
  EXPECT_EQ(writableCalls, 1);
  close(fds[0]);
  close(fds[1]);
}

REGISTER_TYPED_TEST_SUITE_P(MainLoopContract, WorkPostedFromOtherThreadsRunsOnTheLoopThreadInOrder,
                            TimersRepeatUntilCancelledEvenFromTheirOwnTaskAndDelayedWorkRunsInDueOrder,
                            WatchesSeeReadableAndWritableDescriptorsAndStopWhenUnwatched);

}  // namespace quillmark
