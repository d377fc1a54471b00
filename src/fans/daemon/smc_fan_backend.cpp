#include "fans/daemon/smc_fan_backend.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace quillmark {
namespace {

constexpr double kManual = 1.0;
constexpr double kAutomatic = 0.0;

std::string fanKey(int fan, const char* suffix) {
  char key[24];  // room for any int, so the format can never be cut short
  std::snprintf(key, sizeof key, "F%d%s", fan, suffix);
  return key;
}

}  // namespace

SmcFanBackend::SmcFanBackend(SmcFanAccess& smc, std::function<void(double)> sleep)
    : smc_(smc), sleep_(std::move(sleep)) {}

int SmcFanBackend::fanCount() {
  const auto reported = smc_.read("FNum");
  if (reported && *reported >= 0) return std::min(static_cast<int>(*reported), kMaxFans);
  int count = 0;
  while (count < kMaxFans && smc_.read(fanKey(count, "Ac"))) ++count;
  return count;
}

std::string SmcFanBackend::modeKey(int fan) {
  const std::string upper = fanKey(fan, "Md");
  if (smc_.read(upper)) return upper;
  const std::string lower = fanKey(fan, "md");
  return smc_.read(lower) ? lower : upper;
}

std::vector<FanReading> SmcFanBackend::readFans() {
  std::vector<FanReading> fans;
  const int count = fanCount();
  for (int fan = 0; fan < count; ++fan) {
    FanReading reading;
    reading.index = fan;
    reading.actualRPM = smc_.read(fanKey(fan, "Ac")).value_or(0);
    reading.targetRPM = smc_.read(fanKey(fan, "Tg")).value_or(0);
    reading.minRPM = smc_.read(fanKey(fan, "Mn")).value_or(0);
    reading.maxRPM = smc_.read(fanKey(fan, "Mx")).value_or(0);
    reading.forced = std::find(taken_.begin(), taken_.end(), fan) != taken_.end();
    fans.push_back(reading);
  }
  return fans;
}

bool SmcFanBackend::enterManual(int fan) {
  const std::string key = modeKey(fan);
  const auto sticks = [&] { return smc_.write(key, kManual) && smc_.read(key) == kManual; };
  if (sticks()) return true;
  if (!unlocked_) {
    if (!smc_.read("Ftst") || !smc_.write("Ftst", 1.0)) return false;
    unlocked_ = true;
  }
  const long attempts = std::lround(kUnlockSeconds / kRetrySeconds);
  for (long attempt = 0; attempt < attempts; ++attempt) {
    sleep_(kRetrySeconds);
    if (sticks()) return true;
  }
  return false;
}

bool SmcFanBackend::holdFloor(int rpm) {
  bool anySet = false;
  const int count = fanCount();
  for (int fan = 0; fan < count; ++fan) {
    const auto top = smc_.read(fanKey(fan, "Mx"));
    if (!top || !std::isfinite(*top) || *top <= 0) continue;
    const double bottom = std::clamp(smc_.read(fanKey(fan, "Mn")).value_or(0), 0.0, *top);
    const bool held = std::find(taken_.begin(), taken_.end(), fan) != taken_.end();
    if (!held) {
      if (!enterManual(fan)) continue;
      taken_.push_back(fan);
    }
    const double target = std::clamp(static_cast<double>(rpm), bottom, *top);
    if (!smc_.write(fanKey(fan, "Tg"), target)) continue;
    anySet = true;
  }
  return anySet;
}

bool SmcFanBackend::restore() {
  bool all = true;
  for (const int fan : taken_) all = smc_.write(modeKey(fan), kAutomatic) && all;
  taken_.clear();
  if (unlocked_) {
    all = smc_.write("Ftst", 0.0) && all;
    unlocked_ = false;
  }
  return all;
}

int SmcFanBackend::restoreLeftovers() {
  int restored = 0;
  const int count = fanCount();
  for (int fan = 0; fan < count; ++fan) {
    const std::string key = modeKey(fan);
    if (smc_.read(key) == kManual && smc_.write(key, kAutomatic)) ++restored;
  }
  // Left set, Ftst keeps thermalmonitord away from fans that are automatic again.
  if (smc_.read("Ftst") == 1.0) (void)smc_.write("Ftst", 0.0);
  return restored;
}

}  // namespace quillmark
