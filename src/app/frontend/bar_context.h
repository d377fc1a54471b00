#pragma once

#include <optional>

#include "sampling/monitor.h"
#include "settings/settings_types.h"

namespace quillmark {

class L10n;

// The alarm thresholds the status bars colour by, the user's alert thresholds: CPU and memory in
// percent, temperature in °C. A value at or above its threshold counts as over.
struct AlarmThresholds {
  double cpuPercent = 85;
  double memoryPercent = 90;
  double cpuTemperatureC = 85;
};

// Which thresholds one snapshot exceeds.
struct BarAlarms {
  bool cpuHigh = false;
  bool memoryHigh = false;
  bool hot = false;
  bool operator==(const BarAlarms&) const = default;
};

// What the status-bar formats (waybar, i3bar) need besides the snapshot: the user's choices and
// the language. Built per line on the main thread; the L10n must outlive it.
struct BarContext {
  const L10n& l10n;
  bool showNetSpeed = false;
  TempUnit tempUnit = TempUnit::celsius;
  AlarmThresholds thresholds;

  [[nodiscard]] BarAlarms alarms(const Monitor::Snapshot& snapshot) const;
};

// The snapshot's headline figures, absent when they were not read this tick. Every format but the
// status text (which keeps showing the last reading, as the menu bar does) reads them here, so they
// say "no value" the same way.
[[nodiscard]] std::optional<double> cpuPercent(const Monitor::Snapshot& snapshot);
[[nodiscard]] std::optional<double> memoryPercent(const Monitor::Snapshot& snapshot);

}  // namespace quillmark
