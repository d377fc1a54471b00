#pragma once

// Real child processes for the Linux process-control tests: a process group of a leader and two
// members that only wait for signals, or a single process that ignores SIGTERM. The fixture kills
// and reaps everything it started, stopped or not, so no test leaves a frozen child behind.

#include <sys/types.h>

#include <cstdint>
#include <vector>

namespace quillmark::testing {

// Makes this test process the reaper of orphaned descendants, so grandchildren are reaped too.
void becomeSubreaper();

class ChildGroup {
 public:
  // A leader in a new process group with `members` children in the same group.
  explicit ChildGroup(int members = 2, bool ignoreTerm = false);
  ~ChildGroup();
  ChildGroup(const ChildGroup&) = delete;
  ChildGroup& operator=(const ChildGroup&) = delete;

  [[nodiscard]] pid_t leader() const { return leader_; }
  [[nodiscard]] const std::vector<pid_t>& all() const { return all_; }  // leader first

  // Waits for the leader to end and returns its wait status (-1 when it could not be reaped).
  int reapLeader();

 private:
  pid_t leader_ = -1;
  bool reaped_ = false;
  std::vector<pid_t> all_;
};

// The state letter of /proc/<pid>/stat ('?' when unreadable).
[[nodiscard]] char processState(pid_t pid);

// Polls until every pid's state satisfies pred, at most `seconds` of real time.
template <class Pred>
bool waitForStates(const std::vector<pid_t>& pids, Pred pred, double seconds = 2.0);

}  // namespace quillmark::testing

#include "processes/testing/child_group_inl.h"
