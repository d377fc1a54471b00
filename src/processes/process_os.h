#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quillmark {

// The operating-system calls of process control, behind interfaces so that the pause manager,
// termination and the guardian run against fakes on virtual time in tests and against the real
// kernel in production. Every call answers instead of throwing; "could not tell" is an empty
// optional (or -1 for a group), never a guess. Implementations are stateless or thread-safe.

// Exact start stamps: two readings of the same process are equal, and a process that reuses the
// pid gets a different one (on Linux clock ticks since boot, on macOS whole Unix seconds).
class StartTimeSource {
 public:
  virtual ~StartTimeSource() = default;
  [[nodiscard]] virtual std::optional<std::uint64_t> startTime(std::int32_t pid) = 0;
  // The boot the stamps count from; records from another boot name processes that are gone.
  // Empty where the platform's stamps are already absolute.
  [[nodiscard]] virtual std::string bootId() { return {}; }

  static StartTimeSource& platform();
};

// A reference to one process that keeps naming it even after its pid is reused: a pidfd on Linux
// kernels that have one; elsewhere the pid itself (the caller then adds the start-time guard).
class ProcessHandle {
 public:
  virtual ~ProcessHandle() = default;
  // 0 when delivered, else the errno (ESRCH once the process has ended).
  [[nodiscard]] virtual int signal(int signalNumber) = 0;
  // Whether signal() can only ever reach this very process.
  [[nodiscard]] virtual bool boundToProcess() const = 0;
};

// Signals and the process facts they depend on.
class ProcessSignals {
 public:
  virtual ~ProcessSignals() = default;
  [[nodiscard]] virtual std::int32_t processGroup(std::int32_t pid) = 0;  // -1 when unknown
  [[nodiscard]] virtual std::int32_t ownPid() = 0;
  // The kernel's short name (comm / proc_name), absent when it cannot be read.
  [[nodiscard]] virtual std::optional<std::string> shortName(std::int32_t pid) = 0;
  // Stopped by a signal (state T / SSTOP); absent when the process cannot be read.
  [[nodiscard]] virtual std::optional<bool> isStopped(std::int32_t pid) = 0;
  // pid's group is the foreground job of its controlling terminal: stopping it hands the terminal
  // back to the shell, and once continued it runs in the background, where its next terminal
  // read stops it again, out of our reach.
  [[nodiscard]] virtual bool isTerminalForegroundJob(std::int32_t pid) {
    (void)pid;
    return false;
  }
  // kill(-pgid, signal): 0 on success, else the errno.
  [[nodiscard]] virtual int signalGroup(std::int32_t pgid, int signalNumber) = 0;
  // Null when the process cannot be opened (gone, or no permission to find out).
  [[nodiscard]] virtual std::unique_ptr<ProcessHandle> open(std::int32_t pid) = 0;

  [[nodiscard]] std::int32_t ownGroup() { return processGroup(ownPid()); }

  static ProcessSignals& platform();
};

// The cgroup v2 freezer of an application's systemd unit. Paths are relative to the cgroup2 root
// and start with '/'.
class CgroupFreezer {
 public:
  virtual ~CgroupFreezer() = default;
  // The app-….scope or app-….service unit that holds pid, when the user may freeze it and it does
  // not hold this program; absent otherwise (pausing then falls back to the process group).
  [[nodiscard]] virtual std::optional<std::string> freezableUnit(std::int32_t pid) = 0;
  // 0 on success, else the errno.
  [[nodiscard]] virtual int setFrozen(const std::string& cgroup, bool frozen) = 0;
  // cgroup.events says "frozen 1"; absent when the cgroup is gone or unreadable.
  [[nodiscard]] virtual std::optional<bool> isFrozen(const std::string& cgroup) = 0;

  // The freezer where the platform has one; a freezer that never finds a unit elsewhere.
  static CgroupFreezer& platform();
};

// The application the user is working in.
class FrontmostAppSource {
 public:
  virtual ~FrontmostAppSource() = default;
  [[nodiscard]] virtual std::optional<std::int32_t> frontmostPid() = 0;
  // Brings the application of pid forward (after it runs again). Best effort.
  virtual void activate(std::int32_t pid) = 0;

  // NSWorkspace on macOS; on Linux the X11 active window, or nothing on Wayland and without a
  // display. Owned by the caller.
  static std::unique_ptr<FrontmostAppSource> makePlatform();
};

// The OS calls process control needs, gathered so one object can be passed around.
struct ProcessOS {
  StartTimeSource& starts;
  ProcessSignals& signals;
  CgroupFreezer& freezer;
};

}  // namespace quillmark
