#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "sampling/samples.h"

namespace quillmark {

// One resource coalition of this scan: its id, its sampled members in input order, and its
// cumulative energy counter in nanojoules (absent when the usage call failed).
struct CoalitionReading {
  std::uint64_t id = 0;
  std::vector<ProcessSample> members;
  std::optional<std::uint64_t> energyNanojoules;
};

// Turns successive coalition energy counters into watts. Remembers each coalition's previous
// counter and time; a first sight, a counter that went backwards or readings less than half a
// second apart give 0 W (the reading still moves on). Coalitions not seen in a call are
// forgotten, so one that comes back starts again at 0 W. One thread (the monitor's queue).
class EnergyTracker {
 public:
  // One row per coalition with a counter (id 0 is skipped): the member with the smallest pid
  // (the first of equals), watts in cpuPercent, the counter in memoryBytes. `now` in seconds.
  [[nodiscard]] std::vector<ProcessSample> rows(const std::vector<CoalitionReading>& coalitions, double now);

 private:
  struct Previous {
    std::uint64_t nanojoules = 0;
    double at = 0;
  };
  std::map<std::uint64_t, Previous> previous_;
};

// The Mac's energy rows: the sampled processes grouped by resource coalition, each coalition's
// cumulative energy read through the private coalition_info_resource_usage (looked up with dlsym;
// without it there are no rows). Rows are shaped like processes: cpuPercent carries watts,
// memoryBytes the coalition's cumulative nanojoules. The monitor's queue only.
class EnergyReader {
 public:
  EnergyReader() = delete;
  [[nodiscard]] static std::vector<ProcessSample> aggregatedRows(const std::vector<ProcessSample>& processes);
  // Whether this system has the coalition usage call (macOS only).
  [[nodiscard]] static bool available();
};

}  // namespace quillmark
