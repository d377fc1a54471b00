#include "fans/fan_reader.h"
#include "sensors/assertions_reader.h"
#include "sensors/battery_reader.h"
#include "sensors/energy_reader.h"
#include "sensors/gpu_reader.h"
#include "sensors/platform_heavy_readers.h"
#include "sensors/thermal_reader.h"

namespace quillmark {
namespace {

// The macOS heavy readers: the SMC for temperatures and fans, the IO registry for the battery
// and GPU, power assertions and coalition energy. The palm-rest keys are fixed, so the surface
// sensor setting is not used here.
class DarwinHeavyReaders final : public PlatformHeavyReaders {
 public:
  explicit DarwinHeavyReaders(SensorInventory& inventory) : inventory_(inventory) {
    // Coalition energy needs the private call; without it the energy sort is not offered.
    inventory_.setEnergyAvailable(EnergyReader::available());
  }

  void setSurfaceSensor(std::string) override {}

  std::vector<double> readFanSpeeds() override { return FanReader::readFanSpeeds(); }
  ThermalSample readThermal() override { return ThermalReader::read(); }
  std::optional<BatterySample> readBattery() override { return BatteryReader::read(); }

  std::optional<GPUSample> readGPU() override {
    auto gpu = GPUReader::read();
    std::vector<GPUListing> list;
    if (gpu) {
      GPUListing listing;
      listing.name = "Apple GPU";
      listing.driver = "apple";
      listing.busyPercent = gpu->deviceUtil;
      listing.memoryUsedBytes = gpu->allocBytes;
      listing.coreCount = gpu->coreCount;
      list.push_back(std::move(listing));
    }
    inventory_.setGPUs(std::move(list));
    return gpu;
  }

  std::vector<ProcessSample> energyRows(const std::vector<ProcessSample>& processes) override {
    return EnergyReader::aggregatedRows(processes);
  }
  AssertionMap readSleepBlockers() override { return AssertionsReader::readSleepBlockers(); }

 private:
  SensorInventory& inventory_;
};

}  // namespace

std::unique_ptr<PlatformHeavyReaders> PlatformHeavyReaders::make(SensorInventory& inventory) {
  return std::make_unique<DarwinHeavyReaders>(inventory);
}

}  // namespace quillmark
