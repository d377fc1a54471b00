#include "base/poll_main_loop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "base/serial_queue.h"

namespace quillmark {
namespace {

// Real threads and real time, so these check ordering and hand-off, never durations.

TEST(PollMainLoopTest, WorkPostedFromAnotherThreadRunsOnTheLoopThreadInOrder) {
  PollMainLoop loop;
  auto queue = SerialQueue::makeBackground("com.quillmark.test");
  std::vector<int> seen;
  std::thread::id loopThread;
  std::vector<std::thread::id> ranOn;
  loop.post([&] {
    loopThread = std::this_thread::get_id();
    for (int i = 0; i < 50; ++i) {
      queue->async([&loop, &seen, &ranOn, i] {
        loop.post([&seen, &ranOn, &loop, i] {
          seen.push_back(i);
          ranOn.push_back(std::this_thread::get_id());
          if (i == 49) loop.quit();
        });
      });
    }
  });
  loop.run();
  ASSERT_EQ(seen.size(), 50u);
  for (int i = 0; i < 50; ++i) EXPECT_EQ(seen[i], i);
  for (auto id : ranOn) EXPECT_EQ(id, loopThread);
}

TEST(PollMainLoopTest, RepeatingTimerKeepsFiringUntilCancelledAndDelayedWorkRuns) {
  PollMainLoop loop;
  int fires = 0;
  bool delayedRan = false;
  MainLoop::TimerId timer = loop.addRepeatingTimer(0.01, [&] {
    if (++fires == 3) {
      loop.cancelTimer(timer);
      loop.postAfter(0.02, [&] {
        delayedRan = true;
        loop.quit();
      });
    }
  });
  loop.run();
  EXPECT_EQ(fires, 3);
  EXPECT_TRUE(delayedRan);
}

TEST(PollMainLoopTest, WatchedDescriptorWakesTheLoop) {
  PollMainLoop loop;
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  std::string got;
  loop.watchReadable(fds[0], [&] {
    char c = 0;
    if (read(fds[0], &c, 1) == 1) got += c;
    if (got == "ok") loop.quit();
  });
  std::thread writer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    (void)!write(fds[1], "ok", 2);
  });
  loop.run();
  writer.join();
  close(fds[0]);
  close(fds[1]);
  EXPECT_EQ(got, "ok");
}

TEST(SerialQueueTest, DestructionFinishesSubmittedJobs) {
  std::atomic<int> ran{0};
  {
    auto queue = SerialQueue::makeBackground("com.quillmark.test");
    for (int i = 0; i < 100; ++i) queue->async([&] { ++ran; });
  }
  EXPECT_EQ(ran, 100);
}

TEST(PollMainLoopTest, WritableWatchFiresOnceThePipeHasRoomAndEndsWithUnwatch) {
  PollMainLoop loop;
  int fds[2];
  ASSERT_EQ(pipe2(fds, O_NONBLOCK), 0);
  const std::string chunk(4096, 'x');
  while (write(fds[1], chunk.data(), chunk.size()) > 0) {
  }
  int calls = 0;
  loop.watchWritable(fds[1], [&] {
    ++calls;
    loop.unwatch(fds[1]);
    loop.postAfter(0.05, [&] { loop.quit(); });  // time for a wrongly kept watch to fire again
  });
  std::thread reader([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    char buffer[65536];
    while (read(fds[0], buffer, sizeof buffer) > 0) {
    }
  });
  loop.run();
  reader.join();
  close(fds[0]);
  close(fds[1]);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace quillmark
