#include "base/glib_main_loop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "base/testing/main_loop_contract.h"

namespace quillmark {
namespace {

// The shared contract on GLib's default context (the one GTK turns).
INSTANTIATE_TYPED_TEST_SUITE_P(Glib, MainLoopContract, GlibMainLoop);

TEST(GlibMainLoopTest, ADestroyedLoopLeavesNothingBehindOnTheSharedContext) {
  bool staleRan = false;
  int fds[2];
  ASSERT_EQ(pipe2(fds, O_CLOEXEC | O_NONBLOCK), 0);
  {
    GlibMainLoop gone;
    gone.post([&] { staleRan = true; });
    gone.postAfter(0.001, [&] { staleRan = true; });
    (void)gone.addRepeatingTimer(0.001, [&] { staleRan = true; });
    gone.watchReadable(fds[0], [&] { staleRan = true; });
  }
  ASSERT_EQ(write(fds[1], "x", 1), 1);
  GlibMainLoop next;
  next.postAfter(0.05, [&] { next.quit(); });
  next.run();
  EXPECT_FALSE(staleRan);
  close(fds[0]);
  close(fds[1]);
}

}  // namespace
}  // namespace quillmark
