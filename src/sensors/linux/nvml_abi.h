#pragma once

// The few types of NVIDIA's management library ABI the reader calls through (as the library's
// own header defines them: a device is an opaque pointer, structs of plain integers). Shared
// with the test's stand-in library so both sides agree on every function's exact type.
namespace quillmark::nvml {

using Return = int;
inline constexpr Return kSuccess = 0;
inline constexpr Return kInvalidArgument = 2;
inline constexpr Return kNotSupported = 3;
inline constexpr int kTemperatureGpu = 0;
inline constexpr unsigned int kDeviceNameBufferSize = 96;

struct DeviceOpaque;
using Device = DeviceOpaque*;

struct Utilization {
  unsigned int gpu;     // percent of time a kernel ran over the last sample period
  unsigned int memory;  // percent of time memory was read or written
};

struct Memory {
  unsigned long long total;  // bytes
  unsigned long long free;
  unsigned long long used;
};

}  // namespace quillmark::nvml
