#pragma once

namespace quillmark {

// Seconds between 1970-01-01 and 2001-01-01 UTC, the reference date of absolute time.
inline constexpr double kAbsoluteTimeIntervalSince1970 = 978307200.0;

// Wall-clock and monotonic time. Absolute seconds count from 2001-01-01 UTC (the reference date
// used for every stored time); Unix seconds from 1970. Any thread may call a Clock.
class Clock {
 public:
  virtual ~Clock() = default;
  // Seconds since 1970-01-01 UTC.
  [[nodiscard]] virtual double unixNow() const = 0;
  // Seconds since an arbitrary fixed point; never goes backwards. Timers run on this.
  [[nodiscard]] virtual double monotonicNow() const = 0;
  // Seconds since 2001-01-01 UTC.
  [[nodiscard]] double absoluteNow() const { return unixNow() - kAbsoluteTimeIntervalSince1970; }

  // The real clock of the machine.
  static Clock& system();
};

}  // namespace quillmark
