#include "app/frontend/stop_signals.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

namespace quillmark {
namespace {

// Runs `body` in a child process that holds StopSignals, sends it SIGTERM once it is ready, and
// returns its wait status.
template <class Body>
int statusAfterSigterm(Body body) {
  int ready[2];
  if (pipe(ready) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    close(ready[0]);
    {
      StopSignals stopSignals;
      (void)!write(ready[1], "r", 1);
      body(stopSignals);
    }
    _exit(0);
  }
  close(ready[1]);
  char byte = 0;
  (void)!read(ready[0], &byte, 1);
  close(ready[0]);
  kill(child, SIGTERM);
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

TEST(StopSignalsTest, AStuckMainThreadIsEndedByTheGuardAsTheSignalWouldEndIt) {
  // A main thread that never gets back to its loop: the guard ends the process as the signal would.
  const int stuck = statusAfterSigterm([](StopSignals&) {
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
  });
  ASSERT_TRUE(WIFEXITED(stuck));
  EXPECT_EQ(WEXITSTATUS(stuck), 128 + SIGTERM);
}

}  // namespace
}  // namespace quillmark
