#pragma once

#include <vector>

#include "sampling/samples.h"

namespace quillmark {

// The hardware side of a fan helper daemon: SMC writes on macOS, hwmon pwm channels on Linux.
// A backend remembers how it found each fan the first time it touches it, so restore() can give
// every fan back exactly as it was. Speeds in rpm. Called from the daemon's one thread.
class FanBackend {
 public:
  virtual ~FanBackend() = default;

  [[nodiscard]] virtual std::vector<FanReading> readFans() = 0;
  // Holds every fan at or above rpm, clamped per fan to its own [minimum, maximum]. False when
  // no fan could be set (a fan that failed half way is handed back at once).
  [[nodiscard]] virtual bool holdFloor(int rpm) = 0;
  // Hands every touched fan back to automatic control as it was found. Harmless when nothing is
  // held; false when a fan could not be restored.
  virtual bool restore() = 0;
  // Whether a CPU sensor reads at or over its critical limit (never, where the platform does
  // not say).
  [[nodiscard]] virtual bool overheating() { return false; }
  // Every held fan to full speed.
  virtual void fullSpeed() {}
};

}  // namespace quillmark
