#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sampling/samples.h"
#include "sensors/linux/sysfs_attribute.h"

namespace quillmark {

// Per-process power estimated from the CPU packages' RAPL energy counters (powercap), split by
// each process's share of the CPU time of this scan: Linux has no per-application energy
// counter. Rows are shaped like the macOS energy rows: cpuPercent carries watts, memoryBytes the
// process's estimated cumulative energy in nanojoules since it was first seen.
//
// energy_uj is readable by root only on stock kernels since 5.10; without a readable zone
// available() is false and there are no rows. A counter that wraps at max_energy_range_uj is
// unwrapped; samples less than half a second apart give 0 W (and still move the reading on), as
// does the first sample. One thread (the monitor's queue); `now` is a monotonic clock in seconds.
class RaplEnergy {
 public:
  RaplEnergy(std::string root, std::function<double()> now);

  void discover();
  [[nodiscard]] bool available() const { return !zones_.empty(); }
  [[nodiscard]] std::vector<ProcessSample> rows(const std::vector<ProcessSample>& processes, bool& lost);

 private:
  struct Zone {
    std::unique_ptr<SysfsAttribute> energy;
    std::uint64_t range = 0;  // max_energy_range_uj; 0 when unknown
    std::optional<std::uint64_t> previous;
  };

  std::string root_;
  std::function<double()> now_;
  std::vector<Zone> zones_;
  std::optional<double> previousAt_;
  std::map<std::int32_t, double> cumulativeNanojoules_;
};

}  // namespace quillmark
