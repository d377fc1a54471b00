#include "app/frontend/bar_context.h"

#include <cmath>

namespace quillmark {

std::optional<double> cpuPercent(const Monitor::Snapshot& snapshot) {
  if (!snapshot.cpuRead || !std::isfinite(snapshot.cpu.total)) return std::nullopt;
  return snapshot.cpu.total;
}

std::optional<double> memoryPercent(const Monitor::Snapshot& snapshot) {
  // Physical memory is never 0 bytes: 0 means it was not read.
  if (!snapshot.memoryRead || snapshot.memory.total == 0) return std::nullopt;
  return snapshot.memory.usageFraction() * 100.0;
}

BarAlarms BarContext::alarms(const Monitor::Snapshot& snapshot) const {
  BarAlarms result;
  const auto cpu = cpuPercent(snapshot);
  const auto memory = memoryPercent(snapshot);
  result.cpuHigh = cpu && *cpu >= thresholds.cpuPercent;
  result.memoryHigh = memory && *memory >= thresholds.memoryPercent;
  result.hot = snapshot.thermal.cpuC && *snapshot.thermal.cpuC >= thresholds.cpuTemperatureC;
  return result;
}

}  // namespace quillmark
