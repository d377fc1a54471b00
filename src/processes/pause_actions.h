#pragma once

#include "processes/paused_group.h"
#include "processes/process_os.h"

namespace quillmark {

// The two judgements on one paused record that both the pause manager and the guardian make, so
// that they guard against reuse in exactly the same way. Stateless; any thread.
namespace PauseActions {

enum class ResumeOutcome {
  resumed,  // the group (or unit) was thawed
  reused,   // the leader is gone or is another process now: nothing was sent
  failed,   // the thaw was refused; `error` holds the errno
};
struct ResumeResult {
  ResumeOutcome outcome = ResumeOutcome::reused;
  int error = 0;
};

// Whether the record still names the process it was made for: same boot, same start stamp.
[[nodiscard]] bool leaderUnchanged(const PausedGroup& group, ProcessOS& os);

// Thaws the record's group with SIGCONT or its unit through the freezer, only when the leader is
// unchanged.
[[nodiscard]] ResumeResult resume(const PausedGroup& group, ProcessOS& os);

// The leader is unchanged and still frozen by the record's method (state T, or "frozen 1").
[[nodiscard]] bool stillPaused(const PausedGroup& group, ProcessOS& os);

}  // namespace PauseActions
}  // namespace quillmark
