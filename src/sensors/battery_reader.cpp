#include "sensors/battery_reader.h"

#include <cmath>

#include "settings/l10n.h"

namespace quillmark {

BatterySample BatteryReader::sampleFrom(const BatteryProperties& p) {
  BatterySample sample;
  if (p.currentCapacity) sample.percentage = static_cast<int>(*p.currentCapacity);
  sample.isCharging = p.isCharging.value_or(false);
  sample.isCharged = p.fullyCharged.value_or(false);
  sample.externalConnected = p.externalConnected.value_or(false);
  if (p.cycleCount) sample.cycleCount = static_cast<int>(*p.cycleCount);
  if (p.maxCapacity) sample.healthPercent = static_cast<int>(*p.maxCapacity);
  if (p.voltage && p.amperage) {
    sample.powerWatts =
        std::abs(static_cast<double>(*p.voltage) * static_cast<double>(*p.amperage)) / 1'000'000.0;
  }
  return sample;
}

std::string batteryStatusKey(const BatterySample& battery) {
  if (battery.isCharging) return "battery.status.charging";
  if (battery.isCharged) return "battery.status.charged";
  if (battery.externalConnected) return "battery.status.notCharging";
  return "battery.status.onBattery";
}

std::string batteryStatusText(const BatterySample& battery) { return L(batteryStatusKey(battery)); }

}  // namespace quillmark
