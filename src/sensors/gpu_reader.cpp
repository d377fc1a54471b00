#include "sensors/gpu_reader.h"

#include <algorithm>

namespace quillmark {
namespace {

double clampedPercent(std::int64_t value) {
  return static_cast<double>(std::clamp<std::int64_t>(value, 0, 100));
}

}  // namespace

std::optional<GPUSample> GPUReader::sampleFrom(const GPUStatistics& s, std::optional<int> coreCount) {
  if (!s.deviceUtilization) return std::nullopt;
  GPUSample sample;
  sample.deviceUtil = clampedPercent(*s.deviceUtilization);
  if (s.rendererUtilization) sample.rendererUtil = clampedPercent(*s.rendererUtilization);
  if (s.tilerUtilization) sample.tilerUtil = clampedPercent(*s.tilerUtilization);
  sample.allocBytes = s.allocSystemMemory;
  sample.coreCount = coreCount;
  return sample;
}

}  // namespace quillmark
