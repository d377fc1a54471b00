#include <optional>
#include <span>

#include "sensors/smc.h"
#include "sensors/thermal_reader.h"

namespace quillmark {
namespace {

// The largest value the keys gave, the earlier one kept on a tie; absent when none gave one.
std::optional<double> hottest(std::span<const std::string_view> keys) {
  std::optional<double> best;
  for (const auto key : keys) {
    const auto value = SMC::readValue(key);
    if (value && (!best || *value > *best)) best = value;
  }
  return best;
}

}  // namespace

ThermalSample ThermalReader::read() {
  ThermalSample sample;
  sample.cpuC = hottest(cpuKeys);
  sample.gpuC = hottest(gpuKeys);
  sample.batteryC = SMC::readValue(batteryKey);
  sample.surfaceC = hottest(surfaceKeys);
  return sample;
}

}  // namespace quillmark
