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

// A process's short name and the start time it was read for (see RawProcess::startTime).
struct CachedName {
  std::uint64_t startTime = 0;
  std::string name;
};
// pid -> short name, read once per process: an entry whose start time differs from the process
// now holding the pid belongs to that pid's previous owner.
using NameCache = std::unordered_map<std::int32_t, CachedName>;

// The name of the process (pid, startTime) from the cache, read with readName() and stored when
// the pid is new there or now belongs to another process.
template <class ReadName>
const std::string& cachedName(NameCache& names, std::int32_t pid, std::uint64_t startTime,
                              ReadName&& readName) {
  auto [entry, inserted] = names.try_emplace(pid);
  if (inserted || entry->second.startTime != startTime) entry->second = CachedName{startTime, readName()};
  return entry->second.name;
}

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
  // One scan at `now` (absolute seconds): percentages from the previous scan (0 for a pid now held
  // by another process), then both caches pruned to the pids seen.
  ProcessScanResult scan(double now, ProcessReader& reader);

  // The CPU time each pid had at the previous scan, and the start time of the process it was.
  struct CPUTimeAt {
    std::uint64_t startTime = 0;
    std::uint64_t cpuTime = 0;
  };
  std::unordered_map<std::int32_t, CPUTimeAt> prevProcessCPUTime;
  NameCache processNameCache;
  double lastProcessScanTime = 0;
};

}  // namespace quillmark
