#pragma once

#include <deque>
#include <map>
#include <set>

#include "base/clock.h"
#include "base/main_loop.h"
#include "base/serial_queue.h"

namespace quillmark {

// A clock that moves only when a test says so. Starts at an arbitrary fixed wall-clock time.
class VirtualClock final : public Clock {
 public:
  double unixNow() const override { return unixStart_ + elapsed_; }
  double monotonicNow() const override { return elapsed_; }
  void advance(double seconds) { elapsed_ += seconds; }
  void setUnixStart(double unixSeconds) { unixStart_ = unixSeconds; }

 private:
  double unixStart_ = 1.8e9;
  double elapsed_ = 1000.0;
};

// A main loop on virtual time, for tests: nothing runs until the test drains it or advances time,
// so timing rules are checked instantly and deterministically. Single-threaded.
class VirtualMainLoop final : public MainLoop {
 public:
  explicit VirtualMainLoop(VirtualClock& clock) : clock_(clock) {}

  void post(Task task) override;
  void postAfter(double delaySeconds, Task task) override;
  TimerId addRepeatingTimer(double periodSeconds, Task task) override;
  void cancelTimer(TimerId id) override;

  // Runs posted work (and anything it posts) until none is left. Returns how many tasks ran.
  int runUntilIdle();
  // Moves time forward, firing timers and delayed work in time order, each at its due time.
  void advance(double seconds);

  [[nodiscard]] std::size_t activeTimers() const { return live_.size(); }
  [[nodiscard]] double timerPeriod(TimerId id) const;

 private:
  struct Entry {
    TimerId timer = 0;
    double period = 0;
    Task task;
  };
  VirtualClock& clock_;
  std::deque<Task> posted_;
  std::multimap<double, Entry> scheduled_;
  std::set<TimerId> live_;
  TimerId next_ = 1;
};

// A serial queue whose jobs wait until the test runs them, so a test can hold a measurement
// "in flight" while timers keep firing.
class ManualSerialQueue final : public SerialQueue {
 public:
  void async(Job job) override { jobs_.push_back(std::move(job)); }
  [[nodiscard]] std::size_t pending() const { return jobs_.size(); }
  int runAll();  // runs jobs, including ones submitted meanwhile; returns how many ran

 private:
  std::deque<Job> jobs_;
};

}  // namespace quillmark
