#pragma once

#include <memory>
#include <string>

#include "sampling/monitor_hooks.h"
#include "sensors/sensor_inventory.h"

namespace quillmark {

// The platform's expensive readers behind Monitor's HeavyReaders seam (temperatures, fans,
// battery, GPU, energy rows, sleep blockers), plus what the composition root feeds them. The
// readers run on the monitor's queue; setSurfaceSensor may be called from any thread.
class PlatformHeavyReaders : public HeavyReaders {
 public:
  // The sensor the user named for the surface temperature ("chip/attribute"; Linux only: on
  // macOS the palm-rest keys are fixed and this is ignored). Empty: no surface temperature.
  virtual void setSurfaceSensor(std::string id) = 0;

  // The real readers of this platform; they keep the sensor and GPU lists in `inventory`, which
  // must outlive them.
  [[nodiscard]] static std::unique_ptr<PlatformHeavyReaders> make(SensorInventory& inventory);
};

}  // namespace quillmark
