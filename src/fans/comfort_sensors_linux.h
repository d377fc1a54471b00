#pragma once

#include <functional>
#include <optional>
#include <string>

#include "fans/comfort_sensors.h"
#include "sensors/linux/hwmon_discovery.h"

namespace quillmark {

// Comfort cooling's sensors on Linux. There is no generic palm-rest sensor, so the surface is the
// hwmon temperature the user named in "surfaceSensor" ("chip/attribute" or "chip/label"); none
// named, or none by that name, is absent (comfort cooling then reports unavailable). The top
// speed is fanN_max of the first pwm channel quillmark-fand drives (the same discovery order), so
// the floor's rpm means the same duty on both sides. sysRoot is "" for the real machine or a
// fixture tree holding sys/class/hwmon. Main thread only.
class LinuxComfortSensors final : public ComfortSensors {
 public:
  LinuxComfortSensors(std::function<std::string()> surfaceSensor, std::string sysRoot = "");

  std::optional<double> surfaceC() override;
  std::optional<double> fanMaxRPM() override;

 private:
  std::function<std::string()> surfaceSensor_;
  std::string sysRoot_;
  // Walked again when the user names another sensor or the named one stops reading (a driver
  // reload renumbers hwmonN), not every tick.
  std::optional<HwmonInventory> inventory_;
  std::string inventoryFor_;
};

}  // namespace quillmark
