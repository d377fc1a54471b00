#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quillmark {

// One temperature sensor as found on the machine, so a user can see what there is and name one
// (for the surface temperature on Linux). `id` is "chip/attribute", e.g. "thinkpad/temp3".
struct SensorListing {
  std::string id;
  std::string chip;
  std::string label;
  std::optional<double> valueC;  // absent when the last read failed
  bool operator==(const SensorListing&) const = default;
};

// One graphics processor and what could be read of it. A suspended GPU is listed but not read.
struct GPUListing {
  std::string name;    // marketing name where known, else the DRM card ("card0")
  std::string driver;  // "amdgpu", "i915", "nouveau", "nvidia", "apple"
  std::optional<double> busyPercent;
  std::optional<std::uint64_t> memoryUsedBytes;
  std::optional<std::uint64_t> memoryTotalBytes;
  std::optional<double> temperatureC;
  std::optional<int> coreCount;
  bool suspended = false;
  bool operator==(const GPUListing&) const = default;
};

// The last sensor and GPU lists the heavy readers saw, kept for the outputs that show every
// sensor (the JSON line, a settings picker) rather than the four summary temperatures.
// Written on the monitor's queue, read on the main thread: every access takes the lock.
class SensorInventory {
 public:
  void setSensors(std::vector<SensorListing> sensors);
  void setGPUs(std::vector<GPUListing> gpus);
  // Whether per-process energy can be estimated on this machine (the energy sort is offered).
  void setEnergyAvailable(bool available);

  [[nodiscard]] std::vector<SensorListing> sensors() const;
  [[nodiscard]] std::vector<GPUListing> gpus() const;
  [[nodiscard]] bool energyAvailable() const;

 private:
  mutable std::mutex mutex_;
  std::vector<SensorListing> sensors_;
  std::vector<GPUListing> gpus_;
  bool energyAvailable_ = false;
};

}  // namespace quillmark
