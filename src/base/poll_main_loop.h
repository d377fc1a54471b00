#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <vector>

#include "base/clock.h"
#include "base/linux_main_loop.h"

namespace quillmark {

// The Linux main loop: one thread blocked in poll() on a wake-up eventfd and any file descriptors
// the program watches (a signalfd for SIGINT/SIGTERM, for instance). run() returns after quit().
class PollMainLoop final : public LinuxMainLoop {
 public:
  explicit PollMainLoop(const Clock& clock = Clock::system());
  ~PollMainLoop() override;
  PollMainLoop(const PollMainLoop&) = delete;
  PollMainLoop& operator=(const PollMainLoop&) = delete;

  void post(Task task) override;
  void postAfter(double delaySeconds, Task task) override;
  TimerId addRepeatingTimer(double periodSeconds, Task task) override;
  void cancelTimer(TimerId id) override;

  void watchReadable(int fd, Task onReadable) override;
  void watchWritable(int fd, Task onWritable) override;
  void unwatch(int fd) override;

  void run() override;
  void quit() override;  // any thread
  // The process-wide instance that MainLoop::main() returns on Linux unless a program chose
  // another (LinuxMainLoop::useAsMain).
  static PollMainLoop& shared();

 private:
  struct Scheduled {
    TimerId timer = 0;  // 0 for one-shot work
    double period = 0;
    Task task;
  };

  void wake();
  void runDue();

  const Clock& clock_;
  int wakeFd_ = -1;
  std::mutex mutex_;  // guards posted_ and oneShots_ (the only state other threads touch)
  std::vector<Task> posted_;
  std::multimap<double, Task> oneShots_;
  std::multimap<double, Scheduled> timers_;  // main thread only
  std::set<TimerId> liveTimers_;             // main thread only
  struct Watch {
    int fd = -1;
    short events = 0;  // POLLIN or POLLOUT
    Task task;
  };
  std::vector<Watch> watches_;  // main thread only
  TimerId nextTimer_ = 1;
  std::atomic<bool> quitting_{false};
};

}  // namespace quillmark
