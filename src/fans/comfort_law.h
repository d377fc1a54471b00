#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quillmark {

// The comfort-cooling control law: how far the palm rest is above the user's target decides the
// fan floor. Temperatures in °C, speeds in rpm. Pure functions; any thread.
namespace ComfortLaw {

// Below or at target - kReleaseBandC the fans go back to the system.
inline constexpr double kReleaseBandC = 1.0;
// The floor's duty at and just below the target, and the rise that reaches full speed.
inline constexpr double kMinDuty = 0.45;
inline constexpr double kFullSpeedAboveTargetC = 6.0;
// The fan's top speed when the machine does not report one.
inline constexpr double kDefaultMaxRPM = 6000.0;

struct Decision {
  bool release = false;  // hand the fans back; duty and rpm are then 0
  double duty = 0;       // share of the fan's top speed, kMinDuty...1
  int rpm = 0;           // duty x top speed, truncated
};

[[nodiscard]] Decision decide(double surfaceC, double targetC, std::optional<double> maxRPM);

// The warmest reading, the earlier one winning a tie; absent when nothing was read.
[[nodiscard]] std::optional<double> warmest(const std::vector<std::optional<double>>& readings);

// The diagnostic line written each time a floor is sent.
[[nodiscard]] std::string logLine(double surfaceC, double targetC, const Decision& decision);

}  // namespace ComfortLaw
}  // namespace quillmark
