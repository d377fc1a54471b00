#include "fans/fan_reader.h"
#include "sensors/linux/hwmon_discovery.h"
#include "sensors/linux/sysfs_text.h"

namespace quillmark {

// Walks sysfs on every call: the callers outside the sampler (the fan daemon, a settings view)
// ask seldom, and a fresh walk sees a fan chip whose driver was just loaded.
std::vector<double> FanReader::readFanSpeeds() {
  std::vector<double> speeds;
  for (const auto& fan : discoverHwmon("").fans) {
    const auto text = SysfsText::readFile(fan.inputPath);
    if (const auto value = text ? SysfsText::rpm(*text) : std::nullopt) speeds.push_back(*value);
  }
  return speeds;
}

}  // namespace quillmark
