#include "processes/pause_actions.h"

#include <csignal>

namespace quillmark::PauseActions {

bool leaderUnchanged(const PausedGroup& group, ProcessOS& os) {
  if (!group.boot.empty() && group.boot != os.starts.bootId()) return false;
  const auto start = os.starts.startTime(group.leadPid);
  return start && *start == group.leadStart;
}

ResumeResult resume(const PausedGroup& group, ProcessOS& os) {
  if (!leaderUnchanged(group, os)) return {ResumeOutcome::reused, 0};
  const int error = group.method == PauseMethod::freezer ? os.freezer.setFrozen(group.cgroup, false)
                                                         : os.signals.signalGroup(group.pgid, SIGCONT);
  return error == 0 ? ResumeResult{ResumeOutcome::resumed, 0} : ResumeResult{ResumeOutcome::failed, error};
}

bool stillPaused(const PausedGroup& group, ProcessOS& os) {
  if (!leaderUnchanged(group, os)) return false;
  const auto frozen = group.method == PauseMethod::freezer ? os.freezer.isFrozen(group.cgroup)
                                                           : os.signals.isStopped(group.leadPid);
  return frozen.value_or(false);
}

}  // namespace quillmark::PauseActions
