#pragma once

#include <memory>
#include <string>
#include <vector>

#include "sensors/sensor_inventory.h"

namespace quillmark {

// NVIDIA's management library, loaded with dlopen when first asked, so the program neither
// builds against nor requires the proprietary driver. Absent library, a failed init or a missing
// symbol all mean "no NVIDIA GPU to read"; a call that fails leaves that one figure absent.
// One thread (the monitor's queue).
class NvmlLibrary {
 public:
  // `path` is what dlopen is given: the driver's soname, or a stand-in in tests.
  explicit NvmlLibrary(std::string path = "libnvidia-ml.so.1");
  ~NvmlLibrary();
  NvmlLibrary(const NvmlLibrary&) = delete;
  NvmlLibrary& operator=(const NvmlLibrary&) = delete;

  // Loads and initialises the library on the first call; false for good after a failure.
  [[nodiscard]] bool load();
  // One listing per device NVML reports, in its index order; empty when not loaded.
  [[nodiscard]] std::vector<GPUListing> read();

 private:
  struct Api;
  std::string path_;
  void* handle_ = nullptr;
  bool tried_ = false;
  bool initialised_ = false;
  std::unique_ptr<Api> api_;  // the resolved entry points, once loaded
};

}  // namespace quillmark
