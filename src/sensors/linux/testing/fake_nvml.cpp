// A stand-in for NVIDIA's management library, built as a shared object so the reader's dlopen
// path runs in tests without a GPU. Devices come from QM_FAKE_NVML, read at nvmlInit_v2:
// "name,gpu%,usedBytes,totalBytes,tempC,cores;..." (cores 0: the call is unsupported).
// QM_FAKE_NVML_INIT_FAILS makes the init fail.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "sensors/linux/nvml_abi.h"

namespace {

struct Device {
  std::string name;
  unsigned int util = 0;
  unsigned long long used = 0, total = 0;
  unsigned int temp = 0, cores = 0;
};

std::vector<Device>& devices() {
  static std::vector<Device> list;
  return list;
}

using quillmark::nvml::Return;

Device* device(quillmark::nvml::Device handle) {
  const auto index = reinterpret_cast<std::size_t>(handle) - 1;
  return index < devices().size() ? &devices()[index] : nullptr;
}

using quillmark::nvml::kInvalidArgument;
using quillmark::nvml::kNotSupported;
using quillmark::nvml::kSuccess;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) Return nvmlInit_v2() {
  if (std::getenv("QM_FAKE_NVML_INIT_FAILS")) return 1;
  devices().clear();
  const char* script = std::getenv("QM_FAKE_NVML");
  std::stringstream all(script ? script : "");
  for (std::string entry; std::getline(all, entry, ';');) {
    std::stringstream fields(entry);
    Device d;
    std::string field;
    std::getline(fields, d.name, ',');
    fields >> d.util;
    fields.ignore(1) >> d.used;
    fields.ignore(1) >> d.total;
    fields.ignore(1) >> d.temp;
    fields.ignore(1) >> d.cores;
    devices().push_back(d);
  }
  return kSuccess;
}

__attribute__((visibility("default"))) Return nvmlShutdown() { return kSuccess; }

__attribute__((visibility("default"))) Return nvmlDeviceGetCount_v2(unsigned int* count) {
  *count = static_cast<unsigned int>(devices().size());
  return kSuccess;
}

__attribute__((visibility("default"))) Return nvmlDeviceGetHandleByIndex_v2(unsigned int index,
                                                                            quillmark::nvml::Device* handle) {
  if (index >= devices().size()) return kInvalidArgument;
  *handle = reinterpret_cast<quillmark::nvml::Device>(static_cast<std::size_t>(index) + 1);
  return kSuccess;
}

__attribute__((visibility("default"))) Return nvmlDeviceGetName(quillmark::nvml::Device handle, char* name,
                                                                unsigned int length) {
  const Device* d = device(handle);
  if (!d || length == 0) return kInvalidArgument;
  std::strncpy(name, d->name.c_str(), length - 1);
  name[length - 1] = '\0';
  return kSuccess;
}

__attribute__((visibility("default"))) Return nvmlDeviceGetUtilizationRates(quillmark::nvml::Device handle,
                                                                            quillmark::nvml::Utilization* u) {
  const Device* d = device(handle);
  if (!d) return kInvalidArgument;
  *u = {d->util, 0};
  return kSuccess;
}

__attribute__((visibility("default"))) Return nvmlDeviceGetMemoryInfo(quillmark::nvml::Device handle,
                                                                      quillmark::nvml::Memory* m) {
  const Device* d = device(handle);
  if (!d) return kInvalidArgument;
  *m = {d->total, d->total - d->used, d->used};
  return kSuccess;
}

__attribute__((visibility("default"))) Return nvmlDeviceGetTemperature(quillmark::nvml::Device handle,
                                                                       int sensor, unsigned int* t) {
  const Device* d = device(handle);
  if (!d || sensor != 0) return kInvalidArgument;
  *t = d->temp;
  return kSuccess;
}

__attribute__((visibility("default"))) Return nvmlDeviceGetNumGpuCores(quillmark::nvml::Device handle,
                                                                       unsigned int* cores) {
  const Device* d = device(handle);
  if (!d) return kInvalidArgument;
  if (d->cores == 0) return kNotSupported;
  *cores = d->cores;
  return kSuccess;
}

}  // extern "C"
