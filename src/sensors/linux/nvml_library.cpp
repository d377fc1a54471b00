#include "sensors/linux/nvml_library.h"

#include <dlfcn.h>

#include <memory>

#include "sensors/linux/nvml_abi.h"

namespace quillmark {
namespace {

using nvml::Device;
using nvml::kSuccess;
using NvmlReturn = nvml::Return;

template <class Fn>
Fn symbol(void* handle, const char* name) {
  return reinterpret_cast<Fn>(dlsym(handle, name));
}

}  // namespace

struct NvmlLibrary::Api {
  NvmlReturn (*init)();
  NvmlReturn (*shutdown)();
  NvmlReturn (*count)(unsigned int*);
  NvmlReturn (*handleByIndex)(unsigned int, Device*);
  NvmlReturn (*name)(Device, char*, unsigned int);
  NvmlReturn (*utilization)(Device, nvml::Utilization*);
  NvmlReturn (*memory)(Device, nvml::Memory*);
  NvmlReturn (*temperature)(Device, int, unsigned int*);
  NvmlReturn (*cores)(Device, unsigned int*);  // newer drivers only; may be null
};

NvmlLibrary::NvmlLibrary(std::string path) : path_(std::move(path)) {}

NvmlLibrary::~NvmlLibrary() {
  if (initialised_) api_->shutdown();
  api_.reset();
  if (handle_) dlclose(handle_);
}

bool NvmlLibrary::load() {
  if (tried_) return initialised_;
  tried_ = true;
  handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle_) return false;
  auto api = std::make_unique<Api>();
  api->init = symbol<decltype(api->init)>(handle_, "nvmlInit_v2");
  api->shutdown = symbol<decltype(api->shutdown)>(handle_, "nvmlShutdown");
  api->count = symbol<decltype(api->count)>(handle_, "nvmlDeviceGetCount_v2");
  api->handleByIndex = symbol<decltype(api->handleByIndex)>(handle_, "nvmlDeviceGetHandleByIndex_v2");
  api->name = symbol<decltype(api->name)>(handle_, "nvmlDeviceGetName");
  api->utilization = symbol<decltype(api->utilization)>(handle_, "nvmlDeviceGetUtilizationRates");
  api->memory = symbol<decltype(api->memory)>(handle_, "nvmlDeviceGetMemoryInfo");
  api->temperature = symbol<decltype(api->temperature)>(handle_, "nvmlDeviceGetTemperature");
  api->cores = symbol<decltype(api->cores)>(handle_, "nvmlDeviceGetNumGpuCores");
  const bool complete = api->init && api->shutdown && api->count && api->handleByIndex && api->name &&
                        api->utilization && api->memory && api->temperature;
  if (!complete || api->init() != kSuccess) return false;
  api_ = std::move(api);
  initialised_ = true;
  return true;
}

std::vector<GPUListing> NvmlLibrary::read() {
  std::vector<GPUListing> gpus;
  unsigned int count = 0;
  if (!initialised_ || api_->count(&count) != kSuccess) return gpus;
  for (unsigned int i = 0; i < count && i < 64; ++i) {
    Device device = nullptr;
    if (api_->handleByIndex(i, &device) != kSuccess) continue;
    GPUListing gpu;
    gpu.driver = "nvidia";
    char name[nvml::kDeviceNameBufferSize] = {};
    gpu.name =
        api_->name(device, name, sizeof name) == kSuccess ? std::string(name) : "nvidia" + std::to_string(i);
    if (nvml::Utilization u{}; api_->utilization(device, &u) == kSuccess) gpu.busyPercent = u.gpu;
    if (nvml::Memory m{}; api_->memory(device, &m) == kSuccess) {
      gpu.memoryUsedBytes = m.used;
      gpu.memoryTotalBytes = m.total;
    }
    if (unsigned int t = 0; api_->temperature(device, nvml::kTemperatureGpu, &t) == kSuccess)
      gpu.temperatureC = t;
    if (unsigned int c = 0; api_->cores && api_->cores(device, &c) == kSuccess && c > 0)
      gpu.coreCount = static_cast<int>(c);
    gpus.push_back(std::move(gpu));
  }
  return gpus;
}

}  // namespace quillmark
