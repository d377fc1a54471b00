#include "sensors/linux/hwmon_sensors.h"

#include <algorithm>
#include <optional>

#include "sensors/linux/sysfs_text.h"

namespace quillmark {
namespace {

void keepLargest(std::optional<double>& current, double value) {
  if (!current || value > *current) current = value;
}

bool isSuspended(SysfsAttribute& status) {
  const auto text = status.read();
  return text && SysfsText::trimmed(*text) == "suspended";
}

// Devices without runtime power management never sleep, so their status is not worth a read.
bool canSleep(SysfsAttribute& status) {
  const auto text = status.read();
  return text && SysfsText::trimmed(*text) != "unsupported";
}

bool startsWithAny(std::string_view text, std::initializer_list<std::string_view> prefixes) {
  return std::any_of(prefixes.begin(), prefixes.end(),
                     [&](std::string_view p) { return text.starts_with(p); });
}

}  // namespace

HwmonSensors::HwmonSensors(std::string root) : root_(std::move(root)) {}

// The CPU package sensor is preferred over per-core ones, and k10temp's Tdie over Tctl (which
// carries a fan-curve offset on some Ryzen parts); the caller takes the best rank that read.
HwmonSensors::Role HwmonSensors::roleOf(const HwmonChannel& c) {
  const std::string_view chip = c.chip;
  const std::string_view label = c.label;
  if (chip == "coretemp") return label.starts_with("Package id") ? Role::cpuPackage : Role::cpuCore;
  if (chip == "k10temp" || chip == "zenpower") {
    if (label == "Tdie") return Role::cpuPackage;
    if (label == "Tctl") return Role::cpuControl;
    return Role::other;  // Tccd1... are per-die and lag the control value
  }
  if (chip == "cpu_thermal" || chip == "soc_thermal") return Role::cpuPackage;
  if (chip == "thermal")
    return label == "x86_pkg_temp" || label == "cpu-thermal" ? Role::cpuPackage : Role::other;
  if (chip == "amdgpu" || chip == "radeon")
    return label == "edge" || label == "temp1" ? Role::gpu : Role::other;
  if (chip == "nouveau") return c.attribute == "temp1" ? Role::gpu : Role::other;
  if (startsWithAny(chip, {"BAT", "battery"}) || label.find("Battery") != std::string_view::npos)
    return Role::battery;
  return Role::other;
}

HwmonSensors::Channel HwmonSensors::makeChannel(const HwmonChannel& info, Role role) {
  Channel channel{info, info.id(), info.chip + "/" + info.label, SysfsAttribute(info.inputPath), nullptr,
                  role, false};
  if (!info.runtimeStatusPath.empty()) {
    auto& shared = statusFiles_[info.runtimeStatusPath];
    if (!shared)
      shared = std::make_shared<RuntimeStatus>(RuntimeStatus{SysfsAttribute(info.runtimeStatusPath)});
    if (canSleep(shared->file)) channel.runtimeStatus = shared;
  }
  return channel;
}

bool HwmonSensors::asleep(Channel& channel) {
  RuntimeStatus* status = channel.runtimeStatus.get();
  if (!status) return false;
  if (status->pass != pass_) {
    status->pass = pass_;
    status->asleep = isSuspended(status->file);
  }
  return status->asleep;
}

void HwmonSensors::discover() {
  const HwmonInventory inventory = discoverHwmon(root_);
  temps_.clear();
  fans_.clear();
  statusFiles_.clear();
  for (const auto& t : inventory.temps) temps_.push_back(makeChannel(t, roleOf(t)));
  for (const auto& f : inventory.fans) fans_.push_back(makeChannel(f, Role::other));
}

HwmonTemperatures HwmonSensors::readTemperatures(std::string_view surfaceSensor, bool& lost) {
  HwmonTemperatures out;
  ++pass_;
  out.sensors.reserve(temps_.size());
  // The best CPU rank that gave a value wins; within it, the hottest.
  Role cpuRank = Role::other;
  for (auto& channel : temps_) {
    const bool sleeping = asleep(channel);
    const auto text = sleeping ? std::nullopt : channel.file.read();
    const std::optional<double> value = text ? SysfsText::milliCelsius(*text) : std::nullopt;
    if (!value && !sleeping && channel.hasRead) lost = true;
    if (value) channel.hasRead = true;
    out.sensors.push_back(SensorListing{channel.id, channel.info.chip, channel.info.label, value});
    if (!value) continue;
    switch (channel.role) {
      case Role::cpuCore:
      case Role::cpuControl:
      case Role::cpuPackage:
        if (channel.role > cpuRank) {
          cpuRank = channel.role;
          out.thermal.cpuC.reset();
        }
        if (channel.role == cpuRank) keepLargest(out.thermal.cpuC, *value);
        break;
      case Role::gpu:
        keepLargest(out.thermal.gpuC, *value);
        break;
      case Role::battery:
        keepLargest(out.thermal.batteryC, *value);
        break;
      case Role::other:
        break;
    }
    if (!surfaceSensor.empty() && (surfaceSensor == channel.id || surfaceSensor == channel.labelId)) {
      keepLargest(out.thermal.surfaceC, *value);
    }
  }
  return out;
}

std::vector<double> HwmonSensors::readFans(bool& lost) {
  std::vector<double> fans;
  ++pass_;
  fans.reserve(fans_.size());
  for (auto& channel : fans_) {
    const bool sleeping = asleep(channel);
    const auto text = sleeping ? std::nullopt : channel.file.read();
    const std::optional<double> value = text ? SysfsText::rpm(*text) : std::nullopt;
    if (!value && !sleeping && channel.hasRead) lost = true;
    if (!value) continue;
    channel.hasRead = true;
    fans.push_back(*value);
  }
  return fans;
}

}  // namespace quillmark
