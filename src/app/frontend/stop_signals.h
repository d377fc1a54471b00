#pragma once

#include <atomic>
#include <thread>

namespace quillmark {

class LinuxMainLoop;

// SIGINT, SIGTERM and SIGHUP as a clean stop of a terminal program, with a promise: once a stop
// has begun (one of them arrived, or beginStop() was called) the process is gone within
// kGraceSeconds, cleanly when the main thread gets there and otherwise through a forced exit, so
// a main thread stuck in start-up, in a measurement or in teardown never keeps it alive. The
// signals stay blocked in every thread and are read from fd() by the main loop.
//
// Build it first thing in main, before any other thread starts (they inherit the blocked mask),
// and destroy it last: its destructor is the clean end. Main thread only, except that the guard
// runs on its own thread.
class StopSignals {
 public:
  static constexpr double kGraceSeconds = 0.8;

  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // Readable while a stop signal is pending; -1 when the descriptor could not be made.
  [[nodiscard]] int fd() const { return signalFd_; }
  // Reads one pending stop signal and arms the guard: its number, or 0 when none was pending.
  int take();
  // Arms the guard for a stop that no signal asked for (the count reached, the reader gone).
  void beginStop();
  // Quits loop when a stop signal arrives, logging which. Does nothing without a descriptor.
  void quitOnSignal(LinuxMainLoop& loop);

 private:
  void guard();

  int signalFd_ = -1;
  int armFd_ = -1;   // written by beginStop() and take()
  int doneFd_ = -1;  // written by the destructor
  std::atomic<int> lastSignal_{0};
  std::thread guard_;
};

}  // namespace quillmark
