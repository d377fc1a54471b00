#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sampling/samples.h"
#include "sensors/linux/hwmon_discovery.h"
#include "sensors/linux/sysfs_attribute.h"
#include "sensors/sensor_inventory.h"

namespace quillmark {

// What one pass over the temperature channels gave.
struct HwmonTemperatures {
  // cpuC from the CPU package sensor (coretemp, k10temp, zenpower, or a CPU thermal zone), gpuC
  // from amdgpu/nouveau/radeon, batteryC from a battery's own chip, surfaceC from the named sensor.
  ThermalSample thermal;
  std::vector<SensorListing> sensors;  // every temperature channel, read or not
};

// The temperature and fan channels of hwmon (and thermal zones where hwmon has none), discovered
// once and then re-read with pread on descriptors kept open between ticks. Which channel is the
// CPU, GPU or battery sensor is decided at discovery. Owned and called by one thread (the
// monitor's queue).
class HwmonSensors {
 public:
  // `root` is "" for the real machine, or a fixture tree standing in for it.
  explicit HwmonSensors(std::string root);

  // Walks sysfs again and reopens every channel.
  void discover();
  // `surfaceSensor` names a channel as "chip/attribute" or "chip/label" ("thinkpad/temp3");
  // empty or unknown leaves surfaceC absent. `lost` is set when a channel that read before fails.
  [[nodiscard]] HwmonTemperatures readTemperatures(std::string_view surfaceSensor, bool& lost);
  // RPM in discovery order; a fan that fails to read is left out.
  [[nodiscard]] std::vector<double> readFans(bool& lost);

  [[nodiscard]] std::size_t channelCount() const { return temps_.size() + fans_.size(); }

 private:
  enum class Role { other, cpuCore, cpuControl, cpuPackage, gpu, battery };
  // A chip's device's runtime PM status, read at most once per pass over the channels.
  struct RuntimeStatus {
    SysfsAttribute file;
    unsigned pass = 0;
    bool asleep = false;
  };
  struct Channel {
    HwmonChannel info;
    std::string id;       // info.id(), made once
    std::string labelId;  // chip/label, the other way a user may name it
    SysfsAttribute file;
    std::shared_ptr<RuntimeStatus> runtimeStatus;  // shared by the channels of one chip; may be null
    Role role = Role::other;
    bool hasRead = false;
  };

  [[nodiscard]] static Role roleOf(const HwmonChannel& channel);
  [[nodiscard]] Channel makeChannel(const HwmonChannel& info, Role role);
  [[nodiscard]] bool asleep(Channel& channel);

  std::string root_;
  std::vector<Channel> temps_;
  std::vector<Channel> fans_;
  std::map<std::string, std::shared_ptr<RuntimeStatus>> statusFiles_;  // by path, for this discovery
  unsigned pass_ = 0;                                                  // counts passes over the channels
};

}  // namespace quillmark
