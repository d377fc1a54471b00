#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>

#include "app/frontend/stop_signals.h"
#include "base/linux_main_loop.h"
#include "base/log.h"

namespace quillmark {
namespace {

sigset_t stopSet() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGHUP);
  return set;
}

void signalEvent(int fd) {
  const std::uint64_t one = 1;
  (void)!write(fd, &one, sizeof one);
}

}  // namespace

StopSignals::StopSignals() {
  const sigset_t set = stopSet();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  signalFd_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  armFd_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  doneFd_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (signalFd_ >= 0 && armFd_ >= 0 && doneFd_ >= 0) guard_ = std::thread([this] { guard(); });
}

StopSignals::~StopSignals() {
  if (guard_.joinable()) {
    signalEvent(doneFd_);
    guard_.join();
  }
  for (int fd : {signalFd_, armFd_, doneFd_}) {
    if (fd >= 0) close(fd);
  }
}

int StopSignals::take() {
  if (signalFd_ < 0) return 0;
  signalfd_siginfo info{};
  if (read(signalFd_, &info, sizeof info) != static_cast<ssize_t>(sizeof info)) return 0;
  lastSignal_ = static_cast<int>(info.ssi_signo);
  beginStop();
  return lastSignal_;
}

void StopSignals::beginStop() {
  if (armFd_ >= 0) signalEvent(armFd_);
}

void StopSignals::guard() {
  // Waits for the first sign of a stop without consuming it (the main loop reads the signal).
  pollfd waitFor[] = {{signalFd_, POLLIN, 0}, {armFd_, POLLIN, 0}, {doneFd_, POLLIN, 0}};
  while (poll(waitFor, 3, -1) < 0) {
  }
  if (waitFor[2].revents) return;
  pollfd done = {doneFd_, POLLIN, 0};
  const int graceMs = static_cast<int>(std::lround(kGraceSeconds * 1000));
  if (poll(&done, 1, graceMs) > 0) return;

  int signal = lastSignal_;
  if (signal == 0) {
    sigset_t pending;
    sigemptyset(&pending);
    if (sigpending(&pending) == 0) {
      for (int candidate : {SIGTERM, SIGINT, SIGHUP}) {
        if (sigismember(&pending, candidate)) signal = candidate;
      }
    }
  }
  Log::debug("Quillmark stopped (forced: the clean stop took longer than " + std::to_string(graceMs) +
             " ms)");
  // Killed by the signal, as far as the parent can tell; a stop without one is a failure.
  _exit(signal != 0 ? 128 + signal : 1);
}

void StopSignals::quitOnSignal(LinuxMainLoop& loop) {
  if (signalFd_ < 0) return;
  loop.watchReadable(signalFd_, [this, &loop] {
    if (const int signal = take()) {
      Log::debug(std::string("Stop requested by SIG") + sigabbrev_np(signal));
      loop.quit();
    }
  });
}

}  // namespace quillmark
