#pragma once

#include <cstdint>
#include <optional>

#include "sampling/samples.h"

namespace quillmark {

// The integer and byte figures of the accelerator's "PerformanceStatistics" the reader uses,
// each absent when missing or not a number.
struct GPUStatistics {
  std::optional<std::int64_t> deviceUtilization;    // "Device Utilization %"
  std::optional<std::int64_t> rendererUtilization;  // "Renderer Utilization %"
  std::optional<std::int64_t> tilerUtilization;     // "Tiler Utilization %"
  std::optional<std::uint64_t> allocSystemMemory;   // "Alloc system memory", bytes
};

// The integrated GPU's load and memory from the IO registry ("IOAccelerator"). The service and
// its core count are found once and kept; a failed statistics read drops the service so a
// re-published accelerator is found again. Called on the monitor's queue only.
class GPUReader {
 public:
  GPUReader() = delete;

  // Absent when there is no accelerator or it reports no device utilisation.
  [[nodiscard]] static std::optional<GPUSample> read();

  // The sample the statistics describe: utilisations clamped to 0-100; absent without the
  // device utilisation.
  [[nodiscard]] static std::optional<GPUSample> sampleFrom(const GPUStatistics& statistics,
                                                           std::optional<int> coreCount);
};

}  // namespace quillmark
