#include "base/virtual_time.h"

#include <algorithm>

namespace quillmark {

void VirtualMainLoop::post(Task task) { posted_.push_back(std::move(task)); }

void VirtualMainLoop::postAfter(double delaySeconds, Task task) {
  scheduled_.emplace(clock_.monotonicNow() + std::max(0.0, delaySeconds), Entry{0, 0, std::move(task)});
}

MainLoop::TimerId VirtualMainLoop::addRepeatingTimer(double periodSeconds, Task task) {
  const TimerId id = next_++;
  scheduled_.emplace(clock_.monotonicNow() + periodSeconds, Entry{id, periodSeconds, std::move(task)});
  live_.insert(id);
  return id;
}

void VirtualMainLoop::cancelTimer(TimerId id) {
  live_.erase(id);
  std::erase_if(scheduled_, [id](const auto& item) { return item.second.timer == id; });
}

double VirtualMainLoop::timerPeriod(TimerId id) const {
  for (const auto& [due, entry] : scheduled_) {
    if (entry.timer == id) return entry.period;
  }
  return 0;
}

int VirtualMainLoop::runUntilIdle() {
  int ran = 0;
  while (!posted_.empty()) {
    Task task = std::move(posted_.front());
    posted_.pop_front();
    task();
    ++ran;
  }
  return ran;
}

void VirtualMainLoop::advance(double seconds) {
  const double end = clock_.monotonicNow() + seconds;
  runUntilIdle();
  while (!scheduled_.empty() && scheduled_.begin()->first <= end) {
    auto node = scheduled_.extract(scheduled_.begin());
    clock_.advance(node.key() - clock_.monotonicNow());
    node.mapped().task();
    const TimerId id = node.mapped().timer;
    if (id != 0 && live_.count(id)) {
      node.key() += node.mapped().period;
      scheduled_.insert(std::move(node));
    }
    runUntilIdle();
  }
  clock_.advance(end - clock_.monotonicNow());
  runUntilIdle();
}

int ManualSerialQueue::runAll() {
  int ran = 0;
  while (!jobs_.empty()) {
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    job();
    ++ran;
  }
  return ran;
}

}  // namespace quillmark
