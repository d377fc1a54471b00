#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sampling/samples.h"
#include "sensors/linux/sysfs_attribute.h"

namespace quillmark {

// The attributes of one battery in /sys/class/power_supply, parsed; absent where the driver
// has no such file or the file did not parse. Units as the kernel gives them: µWh, µAh, µW, µA,
// µV, tenths of °C.
struct BatteryFields {
  std::string status;  // "Charging", "Discharging", "Not charging", "Full", "Unknown"
  std::optional<std::int64_t> capacity;
  std::optional<std::int64_t> cycleCount;
  std::optional<std::int64_t> energyNow, energyFull, energyFullDesign;
  std::optional<std::int64_t> chargeNow, chargeFull, chargeFullDesign;
  std::optional<std::int64_t> powerNow, currentNow, voltageNow;
  std::optional<std::int64_t> tempDeci;
  std::optional<std::int64_t> chargeEndThreshold;
};

// The whole machine's battery state from its batteries and mains supplies. No battery gives no
// sample, as on a desktop Mac. Several batteries (ThinkPads with BAT0 and BAT1) are summed by
// energy. Pure; any thread.
[[nodiscard]] std::optional<BatterySample> combineBatteries(const std::vector<BatteryFields>& batteries,
                                                            bool anyMainsSupply, bool mainsOnline);
// The hottest battery's own temperature, if any reports one.
[[nodiscard]] std::optional<double> batteryTemperatureC(const std::vector<BatteryFields>& batteries);

// Finds the system batteries (type Battery, scope not Device: a mouse's battery is not the
// machine's) and the mains/USB supplies once, keeps their attribute files open and re-reads them
// with pread. Owned and called by one thread (the monitor's queue).
class PowerSupplyReader {
 public:
  struct Readout {
    std::optional<BatterySample> battery;
    std::optional<double> temperatureC;
    bool supplyLost = false;  // a file that read before failed: time to rediscover
  };

  // `root` is "" for the real machine, or a fixture tree standing in for it.
  explicit PowerSupplyReader(std::string root);
  void discover();
  [[nodiscard]] Readout read();
  // Only the batteries' own temperature files: the temperature is also read on ticks that skip
  // the rest of the battery.
  [[nodiscard]] std::optional<double> readTemperature(bool& lost);
  [[nodiscard]] std::size_t fileCount() const;

 private:
  struct Supply {
    std::map<std::string, SysfsAttribute, std::less<>> files;  // by attribute name
    std::map<std::string, bool, std::less<>> hasRead;
  };

  std::optional<std::string_view> readAttribute(Supply& supply, std::string_view name, bool& lost);

  std::string root_;
  std::vector<Supply> batteries_;
  std::vector<Supply> mains_;
};

}  // namespace quillmark
