#pragma once

#include <cstdint>
#include <string_view>

#include "base/main_loop.h"
#include "base/shared_instance.h"
#include "processes/process_os.h"

namespace quillmark {

// Ends processes politely: SIGTERM, then, 3.0 s later, SIGKILL only if the very same process is
// still there. "The same" is proved twice where the platform allows: the signal goes through a
// handle bound to the process (a pidfd on Linux), and the start stamp read before SIGTERM must
// match a fresh one. A process whose first stamp could not be read is never escalated.
//
// Never signals pid ≤ 1, this program or its process group. Main thread only (the escalation runs on the main
// loop).
class ProcessTerminator {
 public:
  ProcessTerminator(MainLoop& loop, StartTimeSource& starts, ProcessSignals& signals);

  static ProcessTerminator& shared() { return SharedInstance<ProcessTerminator>::get(); }

  // False for pid < 2, this program's pid or process group, or a protected name (first word).
  [[nodiscard]] bool isKillable(std::int32_t pid, std::string_view name);
  // True when SIGTERM was delivered; the escalation check is then queued.
  bool terminate(std::int32_t pid);

  static constexpr double kEscalationDelay = 3.0;

 private:
  [[nodiscard]] bool refused(std::int32_t pid);

  MainLoop& loop_;
  StartTimeSource& starts_;
  ProcessSignals& signals_;
};

}  // namespace quillmark
