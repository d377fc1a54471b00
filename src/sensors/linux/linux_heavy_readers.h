#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "sensors/linux/gpu_reader_linux.h"
#include "sensors/linux/hwmon_sensors.h"
#include "sensors/linux/logind_inhibitors.h"
#include "sensors/linux/power_supply_reader.h"
#include "sensors/linux/rapl_energy.h"
#include "sensors/platform_heavy_readers.h"

namespace quillmark {

// The Linux heavy readers: hwmon temperatures and fans, power_supply batteries, DRM/NVML GPUs,
// RAPL energy rows and logind sleep blockers. Files are discovered on first use, kept open and
// re-read with pread; each part is discovered again when a file that read before fails (a
// driver reloaded, a dock unplugged), and all of them once a minute (a chip that appeared).
// Reader calls come from the monitor's queue only.
class LinuxHeavyReaders final : public PlatformHeavyReaders {
 public:
  struct Options {
    std::string root;                            // "" for the real machine, else a fixture tree
    std::string nvmlPath = "libnvidia-ml.so.1";  // what dlopen is given
    std::function<double()> now;                 // monotonic seconds; default: the steady clock
    bool askLogind = true;                       // false: no sleep blockers (fixture runs)
  };
  static constexpr double kRediscoverySeconds = 60;

  LinuxHeavyReaders(SensorInventory& inventory, Options options);

  void setSurfaceSensor(std::string id) override;

  [[nodiscard]] std::vector<double> readFanSpeeds() override;
  [[nodiscard]] ThermalSample readThermal() override;
  [[nodiscard]] std::optional<BatterySample> readBattery() override;
  [[nodiscard]] std::optional<GPUSample> readGPU() override;
  [[nodiscard]] std::vector<ProcessSample> energyRows(const std::vector<ProcessSample>& processes) override;
  [[nodiscard]] AssertionMap readSleepBlockers() override;

  // How many discoveries each part has made (for tests of the rediscovery rules).
  struct Discoveries {
    int hwmon = 0, power = 0, gpu = 0, energy = 0;
  };
  [[nodiscard]] const Discoveries& discoveries() const { return discoveries_; }

 private:
  // Rediscovers whatever is due: everything once a minute, a part whose file failed at once.
  void refresh();

  SensorInventory& inventory_;
  Options options_;
  HwmonSensors hwmon_;
  PowerSupplyReader power_;
  LinuxGPUReader gpu_;
  RaplEnergy energy_;
  LogindInhibitors logind_;

  std::optional<double> discoveredAt_;
  bool hwmonLost_ = false, powerLost_ = false, gpuLost_ = false, energyLost_ = false;
  Discoveries discoveries_;
  std::optional<double> nvidiaGPUTemperature_;  // from the last GPU read

  std::mutex surfaceMutex_;
  std::string surfaceSensor_;
};

}  // namespace quillmark
