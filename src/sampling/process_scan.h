#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sampling/samples.h"

namespace quillmark {

// pid -> short name, read once per pid lifetime.
using NameCache = std::unordered_map<std::int32_t, std::string>;

// The platform's process table. Called on the monitor's queue only.
class ProcessReader {
 public:
  virtual ~ProcessReader() = default;
  // Every process the platform lists that could be inspected, in the platform's order. A name is
  // taken from `names` when cached; otherwise it is read and stored there ("unknown" when it
  // cannot be read).
  [[nodiscard]] virtual std::vector<RawProcess> readProcessesRaw(NameCache& names) = 0;
  // After each scan: forget any per-pid state (open files, for instance) of pids not in live.
  virtual void retainOnly(const PidSet& live) { (void)live; }

  static std::unique_ptr<ProcessReader> makePlatform();
};

struct ProcessScanResult {
  std::vector<ProcessSample> processes;  // in the reader's order, unsorted
  PidSet livePids;
};

// A process name as the kernel gave it, made displayable: invalid UTF-8 (names are cut at a byte
// limit, possibly inside a character) becomes U+FFFD, and an empty name becomes "unknown".
[[nodiscard]] std::string processDisplayName(std::string_view bytes);

// CPU share of one processor between two readings of a process's cumulative CPU time
// (nanoseconds) taken dt seconds apart: 0 for a new process, a time that went backwards (pid
// reused), or dt of 0.1 s or less.
[[nodiscard]] double processCPUPercent(std::optional<std::uint64_t> previousNs, std::uint64_t currentNs,
                                       double dt);

// The scan step and its per-pid caches, owned by Monitor on its queue.
class ProcessScanner {
 public:
  // One scan at `now` (absolute seconds): percentages from the previous scan, then both caches
  // pruned to the pids seen.
  ProcessScanResult scan(double now, ProcessReader& reader);

  std::unordered_map<std::int32_t, std::uint64_t> prevProcessCPUTime;
  NameCache processNameCache;
  double lastProcessScanTime = 0;
};

}  // namespace quillmark
