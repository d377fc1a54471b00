#include "fans/comfort_law.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace quillmark::ComfortLaw {
namespace {
constexpr double kRoundingSlack = 1e-6;
}  // namespace

Decision decide(double surfaceC, double targetC, std::optional<double> maxRPM) {
  Decision out;
  // A reading that is not a number cannot justify holding the fans.
  if (!std::isfinite(surfaceC) || surfaceC <= targetC - kReleaseBandC) {
    out.release = true;
    return out;
  }
  const bool usable = maxRPM && std::isfinite(*maxRPM) && *maxRPM > 0;
  const double top = usable ? *maxRPM : kDefaultMaxRPM;
  const double rise = (surfaceC - targetC) / kFullSpeedAboveTargetC * (1.0 - kMinDuty);
  out.duty = std::clamp(rise + kMinDuty, kMinDuty, 1.0);
  // Temperatures such as 41.3 are not exact in binary: 0.7525 x 6000 comes out as 4514.999...,
  // which must still truncate to 4515.
  out.rpm = static_cast<int>(std::trunc(out.duty * top + kRoundingSlack));
  return out;
}

std::optional<double> warmest(const std::vector<std::optional<double>>& readings) {
  std::optional<double> best;
  for (const auto& reading : readings) {
    if (reading && std::isfinite(*reading) && (!best || *reading > *best)) best = reading;
  }
  return best;
}

std::string logLine(double surfaceC, double targetC, const Decision& decision) {
  char line[160];
  std::snprintf(line, sizeof line,
                "Comfort cooling: surface %.1f°C > target %d°C; fan floor %d rpm at %d%% duty", surfaceC,
                static_cast<int>(targetC), decision.rpm,
                static_cast<int>(decision.duty * 100.0 + kRoundingSlack));
  return line;
}

}  // namespace quillmark::ComfortLaw
