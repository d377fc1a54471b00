#include "insights/pressure_source_linux.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "base/file_util.h"
#include "base/log.h"

namespace quillmark {

std::unique_ptr<PressureSource> PressureSource::makePlatform(MainLoop& loop, const Clock& clock) {
  return std::make_unique<PsiPressureSource>(loop, clock);
}

PsiPressureSource::PsiPressureSource(MainLoop& loop, const Clock& clock, std::string path, bool allowTrigger)
    : loop_(loop),
      clock_(clock),
      path_(std::move(path)),
      allowTrigger_(allowTrigger),
      alive_(std::make_shared<PsiPressureSource*>(this)) {}

PsiPressureSource::~PsiPressureSource() {
  alive_.reset();
  stopPolling();
  if (watcher_.joinable()) {
    const std::uint64_t one = 1;
    (void)!write(stopFd_, &one, sizeof one);
    watcher_.join();
  }
  if (triggerFd_ >= 0) close(triggerFd_);
  if (stopFd_ >= 0) close(stopFd_);
}

void PsiPressureSource::start(std::function<void(PressureLevel)> onLevel) {
  if (mode_ != Mode::notStarted) return;
  onLevel_ = std::move(onLevel);
  const auto text = readWholeFile(path_);
  if (!text || !parsePsi(*text)) {
    mode_ = Mode::unavailable;
    Log::debug("Memory pressure: " + path_ +
               " is missing or unreadable (no PSI in this kernel?); level stays normal");
    return;
  }
  std::string why;
  if (allowTrigger_ && openTrigger(why) && startWatcher(why)) {
    mode_ = Mode::trigger;
    Log::debug(std::string("Memory pressure: PSI trigger \"") + kTrigger + "\" registered on " + path_ +
               "; reading avg10 every 2 s only while pressure lasts");
  } else {
    mode_ = Mode::polling;
    Log::debug("Memory pressure: " +
               (allowTrigger_ ? "PSI trigger refused (" + why + ")" : std::string("trigger not tried")) +
               "; polling avg10 of " + path_ + " every 2 s");
    startPolling();
  }
  readOnce();
}

bool PsiPressureSource::openTrigger(std::string& why) {
  const int fd = open(path_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    why = std::string("open: ") + std::strerror(errno);
    return false;
  }
  // The kernel wants the terminating NUL too.
  if (write(fd, kTrigger, std::strlen(kTrigger) + 1) < 0) {
    why = std::string("write: ") + std::strerror(errno);
    close(fd);
    return false;
  }
  const int stop = eventfd(0, EFD_CLOEXEC);
  if (stop < 0) {
    why = std::string("eventfd: ") + std::strerror(errno);
    close(fd);
    return false;
  }
  triggerFd_ = fd;
  stopFd_ = stop;
  return true;
}

bool PsiPressureSource::startWatcher(std::string& why) {
  try {
    // The weak handle is taken here: the thread must not read alive_, which the destructor resets.
    watcher_ = std::thread([this, weak = std::weak_ptr<PsiPressureSource*>(alive_)] { watch(weak); });
    return true;
  } catch (const std::system_error& error) {
    why = std::string("no watcher thread: ") + error.what();
    close(triggerFd_);
    close(stopFd_);
    triggerFd_ = stopFd_ = -1;
    return false;
  }
}

// Watcher thread: touches nothing but the two descriptors and the loop's thread-safe post().
void PsiPressureSource::watch(const std::weak_ptr<PsiPressureSource*>& weak) {
  for (;;) {
    pollfd fds[2] = {{triggerFd_, POLLPRI, 0}, {stopFd_, POLLIN, 0}};
    if (poll(fds, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    if (fds[1].revents) return;
    if (fds[0].revents & POLLERR) {
      // The pressure file went away (a cgroup removed); keep watching by polling instead.
      loop_.post([weak] {
        auto self = weak.lock();
        if (!self) return;
        Log::debug("Memory pressure: PSI trigger lost; polling avg10 every 2 s");
        (*self)->mode_ = Mode::polling;
        (*self)->startPolling();
      });
      return;
    }
    if (fds[0].revents & POLLPRI) {
      loop_.post([weak] {
        if (auto self = weak.lock()) (*self)->triggerFired();
      });
    }
  }
}

void PsiPressureSource::triggerFired() {
  Log::verbose([] { return std::string("Memory pressure: PSI trigger fired"); });
  startPolling();
  readOnce();
}

void PsiPressureSource::startPolling() {
  if (timer_ != 0) return;
  std::weak_ptr<PsiPressureSource*> weak = alive_;
  timer_ = loop_.addRepeatingTimer(kPollSeconds, [weak] {
    if (auto self = weak.lock()) (*self)->readOnce();
  });
}

void PsiPressureSource::stopPolling() {
  if (timer_ != 0) loop_.cancelTimer(timer_);
  timer_ = 0;
}

void PsiPressureSource::readOnce() {
  const auto text = readWholeFile(path_);
  const auto reading = text ? parsePsi(*text) : std::nullopt;
  // A failed read keeps the last level: one bad read is no evidence that pressure ended.
  if (!reading) return;
  const PressureLevel before = rules_.level();
  const PressureLevel now = rules_.feed(clock_.monotonicNow(), *reading);
  if (now != before && onLevel_) onLevel_(now);
  if (mode_ == Mode::trigger && now == PressureLevel::normal && rules_.calm()) stopPolling();
}

}  // namespace quillmark
