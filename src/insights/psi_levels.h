#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "insights/pressure_monitor.h"

namespace quillmark {

// One line of a Linux pressure-stall file: the share of wall time (percent) in which tasks stalled,
// averaged over 10, 60 and 300 s, and the total stall in microseconds.
struct PsiLine {
  double avg10 = 0;
  double avg60 = 0;
  double avg300 = 0;
  std::uint64_t total = 0;
  bool operator==(const PsiLine&) const = default;
};

// /proc/pressure/memory (or a cgroup's memory.pressure): "some" = at least one task stalled,
// "full" = all non-idle tasks stalled at once. A kernel without the "full" line leaves it absent.
struct PsiReading {
  PsiLine some;
  std::optional<PsiLine> full;
  bool operator==(const PsiReading&) const = default;
};

// Absent when the text has no well-formed "some" line. Unknown keys and lines are ignored.
[[nodiscard]] std::optional<PsiReading> parsePsi(std::string_view text);

// Turns a series of PSI readings into pressure levels without flapping around a threshold.
//
// The thresholds: a level is entered at once when its avg10 reaches 10 % (tasks lost a tenth of
// the last ten seconds waiting for memory, the point where a desktop starts to feel it), and left
// only after avg10 has stayed below half of that (5 %) for 10 s. Warning follows "some" (anyone
// stalled), critical follows "full" (everyone stalled: the machine is thrashing). The gap between
// 10 % and 5 % and the 10 s of calm are the hysteresis; PSI recomputes its averages every 2 s, so
// 10 s is five fresh readings. Not thread-safe; one owner.
class PsiLevelRules {
 public:
  static constexpr double kEnterPercent = 10.0;
  static constexpr double kHoldPercent = 5.0;
  static constexpr double kCalmSeconds = 10.0;

  // now: monotonic seconds. Returns the level after this reading.
  PressureLevel feed(double now, const PsiReading& reading);
  [[nodiscard]] PressureLevel level() const { return level_; }
  // True when the last reading was below every hold threshold: nothing to watch closely.
  [[nodiscard]] bool calm() const { return calm_; }

 private:
  PressureLevel level_ = PressureLevel::normal;
  std::optional<double> calmSince_;
  bool calm_ = true;
};

}  // namespace quillmark
