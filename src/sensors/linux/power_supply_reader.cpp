#include "sensors/linux/power_supply_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "sensors/linux/sysfs_text.h"

namespace quillmark {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBatteryAttributes[] = {"status",
                                                   "capacity",
                                                   "cycle_count",
                                                   "energy_now",
                                                   "energy_full",
                                                   "energy_full_design",
                                                   "charge_now",
                                                   "charge_full",
                                                   "charge_full_design",
                                                   "power_now",
                                                   "current_now",
                                                   "voltage_now",
                                                   "temp",
                                                   "charge_control_end_threshold"};

std::optional<int> roundedPercent(std::optional<std::int64_t> part, std::optional<std::int64_t> whole) {
  if (!part || !whole || *whole <= 0 || *part < 0) return std::nullopt;
  return static_cast<int>(std::lround(100.0 * static_cast<double>(*part) / static_cast<double>(*whole)));
}

// Sum of one attribute over every battery; absent unless every battery has it.
std::optional<std::int64_t> sum(const std::vector<BatteryFields>& batteries,
                                std::optional<std::int64_t> BatteryFields::*field) {
  std::int64_t total = 0;
  for (const auto& b : batteries) {
    if (!(b.*field)) return std::nullopt;
    total += *(b.*field);
  }
  return total;
}

// Watts flowing in or out of one battery. The ACPI driver reports rates unsigned and others
// signed, so the direction comes from the status, not the sign.
std::optional<double> watts(const BatteryFields& b) {
  if (b.powerNow) return std::abs(static_cast<double>(*b.powerNow)) / 1e6;
  if (b.currentNow && b.voltageNow)
    return std::abs(static_cast<double>(*b.currentNow) * static_cast<double>(*b.voltageNow)) / 1e12;
  return std::nullopt;
}

bool isFull(const BatteryFields& b) {
  if (b.status == "Full") return true;
  // A battery held at a charge limit reports "Not charging" once it reaches the limit.
  return b.status == "Not charging" && b.capacity && b.chargeEndThreshold &&
         *b.capacity >= *b.chargeEndThreshold;
}

std::string typeOf(const fs::path& supply) {
  const auto text = SysfsText::readFile((supply / "type").string());
  return text ? std::string(SysfsText::trimmed(*text)) : std::string();
}

}  // namespace

std::optional<BatterySample> combineBatteries(const std::vector<BatteryFields>& batteries,
                                              bool anyMainsSupply, bool mainsOnline) {
  if (batteries.empty()) return std::nullopt;
  BatterySample sample;
  // One battery reports its own percentage; several are weighed by their energy.
  if (batteries.size() == 1 && batteries.front().capacity)
    sample.percentage = static_cast<int>(*batteries.front().capacity);
  if (!sample.percentage)
    sample.percentage =
        roundedPercent(sum(batteries, &BatteryFields::energyNow), sum(batteries, &BatteryFields::energyFull));
  if (!sample.percentage)
    sample.percentage =
        roundedPercent(sum(batteries, &BatteryFields::chargeNow), sum(batteries, &BatteryFields::chargeFull));
  if (!sample.percentage && batteries.front().capacity)
    sample.percentage = static_cast<int>(*batteries.front().capacity);

  sample.healthPercent = roundedPercent(sum(batteries, &BatteryFields::energyFull),
                                        sum(batteries, &BatteryFields::energyFullDesign));
  if (!sample.healthPercent)
    sample.healthPercent = roundedPercent(sum(batteries, &BatteryFields::chargeFull),
                                          sum(batteries, &BatteryFields::chargeFullDesign));

  bool allFull = true;
  std::optional<double> power;
  for (const auto& b : batteries) {
    sample.isCharging = sample.isCharging || b.status == "Charging";
    allFull = allFull && isFull(b);
    // 0 is what firmware reports when it does not count cycles.
    if (b.cycleCount && *b.cycleCount > 0)
      sample.cycleCount = std::max(sample.cycleCount.value_or(0), static_cast<int>(*b.cycleCount));
    if (const auto w = watts(b)) power = power.value_or(0) + *w;
  }
  sample.isCharged = allFull;
  sample.powerWatts = power;
  // Without any mains supply file (some USB-C laptops), charging or full means it is plugged in.
  sample.externalConnected = anyMainsSupply ? mainsOnline : (sample.isCharging || sample.isCharged);
  return sample;
}

std::optional<double> batteryTemperatureC(const std::vector<BatteryFields>& batteries) {
  std::optional<double> hottest;
  for (const auto& b : batteries) {
    // Tenths of a degree; a value outside what a battery survives is a driver's placeholder.
    if (!b.tempDeci || *b.tempDeci < -400 || *b.tempDeci > 1000) continue;
    const double c = static_cast<double>(*b.tempDeci) / 10.0;
    if (!hottest || c > *hottest) hottest = c;
  }
  return hottest;
}

PowerSupplyReader::PowerSupplyReader(std::string root) : root_(std::move(root)) {}

void PowerSupplyReader::discover() {
  batteries_.clear();
  mains_.clear();
  const fs::path folder = fs::path(root_.empty() ? "/" : root_) / "sys/class/power_supply";
  std::error_code error;
  std::vector<fs::path> supplies;
  for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
    supplies.push_back(it->path());
  std::sort(supplies.begin(), supplies.end());
  for (const auto& path : supplies) {
    const std::string type = typeOf(path);
    Supply supply;
    if (type == "Battery") {
      const auto scope = SysfsText::readFile((path / "scope").string());
      if (scope && SysfsText::trimmed(*scope) == "Device") continue;
      for (const auto name : kBatteryAttributes) {
        const fs::path file = path / name;
        if (fs::exists(file, error)) supply.files.emplace(std::string(name), SysfsAttribute(file.string()));
      }
      batteries_.push_back(std::move(supply));
    } else if (type == "Mains" || type == "USB") {
      supply.files.emplace("online", SysfsAttribute((path / "online").string()));
      mains_.push_back(std::move(supply));
    }
  }
}

std::size_t PowerSupplyReader::fileCount() const {
  std::size_t n = 0;
  for (const auto& s : batteries_) n += s.files.size();
  return n + mains_.size();
}

std::optional<std::string_view> PowerSupplyReader::readAttribute(Supply& supply, std::string_view name,
                                                                 bool& lost) {
  const auto file = supply.files.find(name);
  if (file == supply.files.end()) return std::nullopt;
  auto text = file->second.read();
  bool& seen = supply.hasRead[file->first];
  if (!text && seen) lost = true;
  if (text) seen = true;
  return text;
}

std::optional<double> PowerSupplyReader::readTemperature(bool& lost) {
  std::vector<BatteryFields> batteries(batteries_.size());
  for (std::size_t i = 0; i < batteries_.size(); ++i) {
    const auto text = readAttribute(batteries_[i], "temp", lost);
    batteries[i].tempDeci = text ? SysfsText::integer(*text) : std::nullopt;
  }
  return batteryTemperatureC(batteries);
}

PowerSupplyReader::Readout PowerSupplyReader::read() {
  Readout out;
  std::vector<BatteryFields> batteries;
  batteries.reserve(batteries_.size());
  for (auto& supply : batteries_) {
    const auto number = [&](std::string_view name) -> std::optional<std::int64_t> {
      const auto text = readAttribute(supply, name, out.supplyLost);
      return text ? SysfsText::integer(*text) : std::nullopt;
    };
    BatteryFields b;
    if (const auto status = readAttribute(supply, "status", out.supplyLost))
      b.status = SysfsText::trimmed(*status);
    b.capacity = number("capacity");
    b.cycleCount = number("cycle_count");
    b.energyNow = number("energy_now");
    b.energyFull = number("energy_full");
    b.energyFullDesign = number("energy_full_design");
    b.chargeNow = number("charge_now");
    b.chargeFull = number("charge_full");
    b.chargeFullDesign = number("charge_full_design");
    b.powerNow = number("power_now");
    b.currentNow = number("current_now");
    b.voltageNow = number("voltage_now");
    b.tempDeci = number("temp");
    b.chargeEndThreshold = number("charge_control_end_threshold");
    batteries.push_back(std::move(b));
  }
  bool online = false;
  for (auto& supply : mains_) {
    const auto text = readAttribute(supply, "online", out.supplyLost);
    const auto value = text ? SysfsText::integer(*text) : std::nullopt;
    online = online || (value && *value >= 1);
  }
  out.battery = combineBatteries(batteries, !mains_.empty(), online);
  out.temperatureC = batteryTemperatureC(batteries);
  return out;
}

}  // namespace quillmark
