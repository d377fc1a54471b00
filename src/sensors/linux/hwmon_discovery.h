#pragma once

#include <string>
#include <vector>

namespace quillmark {

// One temperature or fan channel of a hwmon chip (or a thermal zone standing in for one), found
// by walking sysfs once. `id()` is what the user names in the "surfaceSensor" setting.
struct HwmonChannel {
  std::string chip;       // the chip's name file: "coretemp", "thinkpad", "amdgpu"; "thermal" for zones
  std::string attribute;  // "temp3", "fan1", or the zone's folder name
  int index = 0;          // N of tempN/fanN
  std::string label;      // tempN_label, the zone's type, or the attribute when there is none
  std::string inputPath;  // the file that holds the reading
  // The chip's device's runtime PM status file, empty when it has none: a suspended device (a
  // dGPU asleep) is not read, since reading it could wake it.
  std::string runtimeStatusPath;
  [[nodiscard]] std::string id() const { return chip + "/" + attribute; }
  bool operator==(const HwmonChannel&) const = default;
};

// Every channel found, chips ordered by their device path (stable for a boot, unlike hwmonN
// numbers) and channels by number, so fans keep their order from one discovery to the next.
struct HwmonInventory {
  std::vector<HwmonChannel> temps;
  std::vector<HwmonChannel> fans;
};

// Walks <root>/sys/class/hwmon (attributes in hwmonN/ or, on old drivers, hwmonN/device/), and
// <root>/sys/class/thermal zones when no chip has a temperature at all. `root` is "" for the real
// machine, or a fixture tree. Never throws; unreadable parts are skipped. Any thread.
[[nodiscard]] HwmonInventory discoverHwmon(const std::string& root);

}  // namespace quillmark
