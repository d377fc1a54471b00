#include "base/poll_main_loop.h"

#include <gtest/gtest.h>

#include <atomic>

#include "base/serial_queue.h"
#include "base/testing/main_loop_contract.h"

namespace quillmark {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(Poll, MainLoopContract, PollMainLoop);

// The loop's other threads post from a serial queue; a queue going away still runs its jobs.
TEST(SerialQueueTest, DestructionFinishesSubmittedJobs) {
  std::atomic<int> ran{0};
  {
    auto queue = SerialQueue::makeBackground("com.quillmark.test");
    for (int i = 0; i < 100; ++i) queue->async([&] { ++ran; });
  }
  EXPECT_EQ(ran, 100);
}

}  // namespace
}  // namespace quillmark
