#pragma once

#include <optional>
#include <string>

#include "processes/process_os_posix.h"

namespace quillmark {

// The Linux implementations of the process-control interfaces, exposed so that tests can run them
// against real child processes and a cgroup2 hierarchy of their own. Thread-safe (no state beyond
// what the constructor fixes).

// Field 22 of /proc/<pid>/stat (ticks since boot), exact; the boot id from /proc.
class LinuxStartTimeSource final : public StartTimeSource {
 public:
  std::optional<std::uint64_t> startTime(std::int32_t pid) override;
  std::string bootId() override;
};

// kill(2) and getpgid(2); handles are pidfds where the kernel has pidfd_open (5.3+).
class LinuxProcessSignals final : public PosixProcessSignals {
 public:
  std::optional<std::string> shortName(std::int32_t pid) override;
  std::optional<bool> isStopped(std::int32_t pid) override;
  bool isTerminalForegroundJob(std::int32_t pid) override;
  std::unique_ptr<ProcessHandle> open(std::int32_t pid) override;
};

// The cgroup v2 freezer of app-….scope / app-….service units below `root` (the cgroup2 mount).
class LinuxCgroupFreezer final : public CgroupFreezer {
 public:
  // An empty root means "find the cgroup2 mount in /proc/self/mountinfo".
  explicit LinuxCgroupFreezer(std::string root = {});
  std::optional<std::string> freezableUnit(std::int32_t pid) override;
  int setFrozen(const std::string& cgroup, bool frozen) override;
  std::optional<bool> isFrozen(const std::string& cgroup) override;

 private:
  std::optional<std::string> root_;
};

}  // namespace quillmark
