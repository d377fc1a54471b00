#include "sensors/linux/hwmon_discovery.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "sensors/linux/sysfs_text.h"

namespace quillmark {
namespace {

namespace fs = std::filesystem;

struct Match {
  bool isTemp = false;
  int index = 0;
};

// "temp12_input" -> temperature 12; anything else (temp1_max, fan1_target, pwm1) is not a reading.
std::optional<Match> readingAttribute(std::string_view name) {
  constexpr std::string_view kSuffix = "_input";
  Match match;
  if (name.starts_with("temp")) {
    match.isTemp = true;
    name.remove_prefix(4);
  } else if (name.starts_with("fan")) {
    name.remove_prefix(3);
  } else {
    return std::nullopt;
  }
  if (!name.ends_with(kSuffix)) return std::nullopt;
  name.remove_suffix(kSuffix.size());
  const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(), match.index);
  if (error != std::errc() || stop != name.data() + name.size() || match.index < 0) return std::nullopt;
  return match;
}

struct Chip {
  std::string sortKey;
  std::vector<HwmonChannel> temps;
  std::vector<HwmonChannel> fans;
};

std::vector<fs::path> entries(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    found.push_back(it->path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string firstLine(const fs::path& file) {
  const auto text = SysfsText::readFile(file.string());
  return text ? std::string(SysfsText::trimmed(*text)) : std::string();
}

// The channels in one attribute folder; empty when it holds no reading.
Chip channelsIn(const fs::path& folder, const std::string& chipName) {
  Chip chip;
  for (const auto& file : entries(folder)) {
    const std::string name = file.filename().string();
    const auto match = readingAttribute(name);
    if (!match) continue;
    HwmonChannel channel;
    channel.chip = chipName;
    channel.attribute = (match->isTemp ? "temp" : "fan") + std::to_string(match->index);
    channel.index = match->index;
    channel.label = firstLine(folder / (channel.attribute + "_label"));
    if (channel.label.empty()) channel.label = channel.attribute;
    channel.inputPath = file.string();
    (match->isTemp ? chip.temps : chip.fans).push_back(std::move(channel));
  }
  const auto byIndex = [](const HwmonChannel& a, const HwmonChannel& b) { return a.index < b.index; };
  std::sort(chip.temps.begin(), chip.temps.end(), byIndex);
  std::sort(chip.fans.begin(), chip.fans.end(), byIndex);
  return chip;
}

Chip discoverChip(const fs::path& hwmon) {
  std::string name = firstLine(hwmon / "name");
  if (name.empty()) name = firstLine(hwmon / "device" / "name");
  if (name.empty()) name = hwmon.filename().string();
  Chip chip = channelsIn(hwmon, name);
  if (chip.temps.empty() && chip.fans.empty()) chip = channelsIn(hwmon / "device", name);
  std::error_code missing;
  if (const fs::path status = hwmon / "device/power/runtime_status"; fs::exists(status, missing)) {
    for (auto* list : {&chip.temps, &chip.fans}) {
      for (auto& channel : *list) channel.runtimeStatusPath = status.string();
    }
  }
  // hwmonN numbers change between boots; the device behind the chip does not.
  std::error_code error;
  fs::path identity = fs::canonical(hwmon / "device", error);
  if (error) identity = fs::canonical(hwmon, error);
  if (error) identity = hwmon;
  chip.sortKey = identity.string() + "\n" + name;
  return chip;
}

std::vector<HwmonChannel> thermalZones(const fs::path& thermal) {
  std::vector<HwmonChannel> zones;
  for (const auto& zone : entries(thermal)) {
    const std::string folder = zone.filename().string();
    if (!folder.starts_with("thermal_zone")) continue;
    HwmonChannel channel;
    channel.chip = "thermal";
    channel.attribute = folder;
    std::from_chars(folder.data() + 12, folder.data() + folder.size(), channel.index);
    channel.label = firstLine(zone / "type");
    if (channel.label.empty()) channel.label = folder;
    channel.inputPath = (zone / "temp").string();
    zones.push_back(std::move(channel));
  }
  std::sort(zones.begin(), zones.end(), [](const auto& a, const auto& b) { return a.index < b.index; });
  return zones;
}

}  // namespace

HwmonInventory discoverHwmon(const std::string& root) {
  const fs::path base = fs::path(root.empty() ? "/" : root);
  std::vector<Chip> chips;
  for (const auto& hwmon : entries(base / "sys/class/hwmon")) chips.push_back(discoverChip(hwmon));
  std::stable_sort(chips.begin(), chips.end(),
                   [](const Chip& a, const Chip& b) { return a.sortKey < b.sortKey; });

  HwmonInventory inventory;
  for (auto& chip : chips) {
    std::move(chip.temps.begin(), chip.temps.end(), std::back_inserter(inventory.temps));
    std::move(chip.fans.begin(), chip.fans.end(), std::back_inserter(inventory.fans));
  }
  if (inventory.temps.empty()) inventory.temps = thermalZones(base / "sys/class/thermal");
  return inventory;
}

}  // namespace quillmark
