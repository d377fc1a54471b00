#pragma once

#include "processes/process_os.h"

namespace quillmark {

// What both platforms do through plain POSIX calls: kill(2) and getpgid(2). Stateless.

// The bare pid, for systems (or kernels) without process descriptors: the caller's start-stamp
// guard is all that keeps a signal from reaching a process that reused the pid.
class PidHandle final : public ProcessHandle {
 public:
  explicit PidHandle(std::int32_t pid) : pid_(pid) {}
  int signal(int signalNumber) override;
  bool boundToProcess() const override { return false; }

 private:
  std::int32_t pid_;
};

class PosixProcessSignals : public ProcessSignals {
 public:
  std::int32_t processGroup(std::int32_t pid) override;
  std::int32_t ownPid() override;
  // Refuses groups 0 and 1: kill(0) and kill(-1) would reach our own group or every process.
  int signalGroup(std::int32_t pgid, int signalNumber) override;
};

}  // namespace quillmark
