#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sampling/samples.h"
#include "sensors/linux/drm_fdinfo.h"
#include "sensors/linux/nvml_library.h"
#include "sensors/linux/sysfs_attribute.h"
#include "sensors/sensor_inventory.h"

namespace quillmark {

// The machine's summary GPU figure: the busiest GPU that reports a load (clamped to 0-100), with
// its memory in use and core count. Absent when no GPU reports a load. Pure; any thread.
[[nodiscard]] std::optional<GPUSample> busiestGPU(const std::vector<GPUListing>& gpus);

// The GPUs under /sys/class/drm: amdgpu's load and VRAM from sysfs, NVIDIA's through NVML
// (loaded at run time, only when the NVIDIA driver is present), others (i915, xe...) from the
// engine time their clients report in /proc/<pid>/fdinfo, where we may read it.
// A card whose runtime PM status is "suspended" is listed as such and not touched, since reading
// it would wake it. Files are found once and kept open. One thread (the monitor's queue).
class LinuxGPUReader {
 public:
  // `root` is "" for the real machine or a fixture tree; `nvmlPath` is what dlopen gets; `now`
  // is a monotonic clock in seconds.
  LinuxGPUReader(std::string root, std::string nvmlPath, std::function<double()> now);

  void discover();
  [[nodiscard]] std::vector<GPUListing> read(bool& lost);

 private:
  struct Card {
    std::string name;
    std::string driver;
    std::string pdev;  // the PCI address fdinfo names the card by
    bool useFdinfo = false;
    std::unique_ptr<SysfsAttribute> runtimeStatus;  // absent: the card has no runtime PM
    std::unique_ptr<SysfsAttribute> busy, vramUsed, vramTotal, temperature;
    bool hasRead = false;
  };

  std::string root_;
  std::vector<Card> cards_;
  std::function<double()> now_;
  DrmBusyTracker fdinfo_;
  NvmlLibrary nvml_;
  bool nvidiaDriver_ = false;
  // The runtime PM status of each NVIDIA card: NVML is not asked while every one is asleep.
  std::vector<std::pair<std::string, std::unique_ptr<SysfsAttribute>>> nvidiaCards_;
};

}  // namespace quillmark
