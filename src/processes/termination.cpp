#include "processes/termination.h"

#include <csignal>
#include <memory>
#include <optional>
#include <string>

#include "base/log.h"
#include "processes/process_names.h"

namespace quillmark {

ProcessTerminator::ProcessTerminator(MainLoop& loop, StartTimeSource& starts, ProcessSignals& signals)
    : loop_(loop), starts_(starts), signals_(signals) {}

bool ProcessTerminator::refused(std::int32_t pid) {
  if (pid < 2 || pid == signals_.ownPid()) return true;
  // Our own group holds the guardian (and whatever launched us alongside); none of it is the
  // user's to end from our list.
  const std::int32_t own = signals_.ownGroup();
  return own < 2 || signals_.processGroup(pid) == own;
}

bool ProcessTerminator::isKillable(std::int32_t pid, std::string_view name) {
  return !refused(pid) && !ProcessNames::isProtected(name);
}

bool ProcessTerminator::terminate(std::int32_t pid) {
  if (refused(pid)) return false;
  std::shared_ptr<ProcessHandle> handle = signals_.open(pid);
  if (!handle) return false;
  // Read after the handle is open: a pid reused before the open makes the stamp the new
  // process's, and the handle then names that same process, so the pair stays consistent.
  const std::optional<std::uint64_t> start = starts_.startTime(pid);
  if (handle->signal(SIGTERM) != 0) return false;

  // The source, not this object: the source lives for the whole program.
  loop_.postAfter(kEscalationDelay, [starts = &starts_, handle, pid, start] {
    if (!start || handle->signal(0) != 0) return;
    const auto now = starts->startTime(pid);
    if (!now || *now != *start) return;
    if (handle->signal(SIGKILL) == 0)
      Log::debug("SIGTERM had no effect; escalated to SIGKILL: " + std::to_string(pid));
  });
  return true;
}

}  // namespace quillmark
