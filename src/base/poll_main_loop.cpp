#include "base/poll_main_loop.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cmath>

namespace quillmark {

PollMainLoop::PollMainLoop(const Clock& clock) : clock_(clock) {
  wakeFd_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
}

PollMainLoop::~PollMainLoop() {
  if (wakeFd_ >= 0) close(wakeFd_);
}

void PollMainLoop::wake() {
  const std::uint64_t one = 1;
  // A full counter (EAGAIN) still leaves the fd readable, which is all a wake-up needs.
  (void)!write(wakeFd_, &one, sizeof one);
}

void PollMainLoop::post(Task task) {
  {
    std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
  }
  wake();
}

void PollMainLoop::postAfter(double delaySeconds, Task task) {
  {
    std::lock_guard lock(mutex_);
    oneShots_.emplace(clock_.monotonicNow() + std::max(0.0, delaySeconds), std::move(task));
  }
  wake();
}

MainLoop::TimerId PollMainLoop::addRepeatingTimer(double periodSeconds, Task task) {
  const TimerId id = nextTimer_++;
  const double period = std::max(periodSeconds, 0.001);
  timers_.emplace(clock_.monotonicNow() + period, Scheduled{id, period, std::move(task)});
  liveTimers_.insert(id);
  return id;
}

void PollMainLoop::cancelTimer(TimerId id) {
  liveTimers_.erase(id);
  for (auto it = timers_.begin(); it != timers_.end(); ++it) {
    if (it->second.timer == id) {
      timers_.erase(it);
      return;
    }
  }
}

void PollMainLoop::watchReadable(int fd, Task onReadable) {
  watches_.push_back({fd, POLLIN, std::move(onReadable)});
}

void PollMainLoop::watchWritable(int fd, Task onWritable) {
  watches_.push_back({fd, POLLOUT, std::move(onWritable)});
}

void PollMainLoop::unwatch(int fd) {
  std::erase_if(watches_, [fd](const Watch& watch) { return watch.fd == fd; });
}

void PollMainLoop::quit() {
  quitting_ = true;
  wake();
}

void PollMainLoop::runDue() {
  std::vector<Task> work;
  const double now = clock_.monotonicNow();
  {
    std::lock_guard lock(mutex_);
    work.swap(posted_);
    while (!oneShots_.empty() && oneShots_.begin()->first <= now) {
      work.push_back(std::move(oneShots_.begin()->second));
      oneShots_.erase(oneShots_.begin());
    }
  }
  for (auto& task : work) {
    if (quitting_) return;
    task();
  }
  while (!quitting_ && !timers_.empty() && timers_.begin()->first <= now) {
    auto node = timers_.extract(timers_.begin());
    Scheduled& timer = node.mapped();
    timer.task();
    if (!liveTimers_.count(timer.timer)) continue;  // cancelled by its own task
    // Next firing on the original grid, skipping those that were missed.
    double due = node.key() + timer.period;
    if (due <= now) due += std::ceil((now - due) / timer.period + 1e-9) * timer.period;
    node.key() = due;
    timers_.insert(std::move(node));
  }
}

void PollMainLoop::run() {
  quitting_ = false;
  while (!quitting_) {
    runDue();
    if (quitting_) break;

    double next = INFINITY;
    {
      std::lock_guard lock(mutex_);
      if (!posted_.empty()) next = 0;
      if (!oneShots_.empty()) next = std::min(next, oneShots_.begin()->first);
    }
    if (!timers_.empty()) next = std::min(next, timers_.begin()->first);
    int timeoutMs = -1;
    if (std::isfinite(next)) {
      const double wait = std::max(0.0, next - clock_.monotonicNow());
      timeoutMs = static_cast<int>(std::min(std::ceil(wait * 1000.0), double{INT_MAX}));
    }

    std::vector<pollfd> fds;
    fds.push_back({wakeFd_, POLLIN, 0});
    for (const auto& watch : watches_) fds.push_back({watch.fd, watch.events, 0});
    // A task may add or end watches, so each is found again by fd and events, and its task is
    // copied before it runs.
    const std::vector<Watch> polled = watches_;
    const int ready = poll(fds.data(), fds.size(), timeoutMs);
    if (ready < 0 && errno != EINTR) break;
    if (ready <= 0) continue;
    if (fds[0].revents & POLLIN) {
      std::uint64_t count = 0;
      (void)!read(wakeFd_, &count, sizeof count);
    }
    for (std::size_t i = 1; i < fds.size() && !quitting_; ++i) {
      if (!(fds[i].revents & (fds[i].events | POLLHUP | POLLERR | POLLNVAL))) continue;
      const auto live = std::find_if(watches_.begin(), watches_.end(), [&](const Watch& watch) {
        return watch.fd == polled[i - 1].fd && watch.events == polled[i - 1].events;
      });
      if (live == watches_.end()) continue;
      const Task task = live->task;
      task();
    }
  }
}

PollMainLoop& PollMainLoop::shared() {
  static PollMainLoop loop;
  return loop;
}

namespace {
std::atomic<LinuxMainLoop*> chosenMain{nullptr};
}  // namespace

void LinuxMainLoop::useAsMain(LinuxMainLoop& loop) { chosenMain = &loop; }

LinuxMainLoop& LinuxMainLoop::main() {
  LinuxMainLoop* chosen = chosenMain.load();
  return chosen ? *chosen : PollMainLoop::shared();
}

MainLoop& MainLoop::main() { return LinuxMainLoop::main(); }

}  // namespace quillmark
