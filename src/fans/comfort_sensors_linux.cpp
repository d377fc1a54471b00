#include "fans/comfort_sensors_linux.h"

#include <charconv>

#include "base/file_util.h"
#include "fans/hwmon_pwm_channels_linux.h"
#include "sensors/linux/sysfs_text.h"

namespace quillmark {

LinuxComfortSensors::LinuxComfortSensors(std::function<std::string()> surfaceSensor, std::string sysRoot)
    : surfaceSensor_(std::move(surfaceSensor)), sysRoot_(std::move(sysRoot)) {}

std::optional<double> LinuxComfortSensors::surfaceC() {
  const std::string name = surfaceSensor_ ? surfaceSensor_() : std::string();
  if (name.empty()) return std::nullopt;
  if (!inventory_ || inventoryFor_ != name) {
    inventory_ = discoverHwmon(sysRoot_);
    inventoryFor_ = name;
  }
  for (const HwmonChannel& channel : inventory_->temps) {
    if (channel.id() != name && channel.chip + "/" + channel.label != name) continue;
    const auto text = SysfsText::readFile(channel.inputPath);
    const auto celsius = text ? SysfsText::milliCelsius(*text) : std::nullopt;
    if (!celsius) inventory_.reset();
    return celsius;
  }
  return std::nullopt;
}

std::optional<double> LinuxComfortSensors::fanMaxRPM() {
  const auto channels = findHwmonPwmChannels(sysRoot_ + "/sys/class/hwmon");
  if (channels.empty()) return std::nullopt;
  const auto text =
      readWholeFile(channels.front().dir + "/fan" + std::to_string(channels.front().number) + "_max");
  double value = 0;
  if (!text || std::from_chars(text->data(), text->data() + text->size(), value).ec != std::errc() ||
      value <= 0) {
    return std::nullopt;
  }
  return value;
}

std::unique_ptr<ComfortSensors> ComfortSensors::makePlatform(std::function<std::string()> surfaceSensor) {
  return std::make_unique<LinuxComfortSensors>(std::move(surfaceSensor));
}

}  // namespace quillmark
