#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "sampling/samples.h"

namespace quillmark {

// The properties of the "AppleSmartBattery" registry entry the reader uses, each absent when
// missing or not of the expected kind. Voltage in mV, amperage in mA (negative while
// discharging), capacities as the entry holds them (percentages on Apple silicon).
struct BatteryProperties {
  std::optional<std::int64_t> currentCapacity;
  std::optional<bool> isCharging;
  std::optional<bool> fullyCharged;
  std::optional<bool> externalConnected;
  std::optional<std::int64_t> cycleCount;
  std::optional<std::int64_t> maxCapacity;
  std::optional<std::int64_t> voltage;
  std::optional<std::int64_t> amperage;
};

// The Mac's battery from the IO registry; no battery service (a desktop Mac) gives no sample.
// Stateless; called on the monitor's queue.
class BatteryReader {
 public:
  BatteryReader() = delete;

  [[nodiscard]] static std::optional<BatterySample> read();

  // The sample the properties describe: missing booleans are false, power is
  // |voltage × amperage| / 1e6 W (direction is told by the flags), absent unless both are there.
  [[nodiscard]] static BatterySample sampleFrom(const BatteryProperties& properties);
};

// The localization key of the battery's one-line status: charging, else charged, else on mains
// and not charging, else on battery.
[[nodiscard]] std::string batteryStatusKey(const BatterySample& battery);
// That status in the chosen language (L10n::shared()).
[[nodiscard]] std::string batteryStatusText(const BatterySample& battery);

}  // namespace quillmark
