#include "sensors/linux/linux_heavy_readers.h"

#include <chrono>

namespace quillmark {
namespace {

double steadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void keepLargest(std::optional<double>& current, std::optional<double> value) {
  if (value && (!current || *value > *current)) current = value;
}

}  // namespace

std::unique_ptr<PlatformHeavyReaders> PlatformHeavyReaders::make(SensorInventory& inventory) {
  return std::make_unique<LinuxHeavyReaders>(inventory, LinuxHeavyReaders::Options{});
}

LinuxHeavyReaders::LinuxHeavyReaders(SensorInventory& inventory, Options options)
    : inventory_(inventory),
      options_(std::move(options)),
      hwmon_(options_.root),
      power_(options_.root),
      gpu_(options_.root, options_.nvmlPath, options_.now ? options_.now : steadySeconds),
      energy_(options_.root, options_.now ? options_.now : steadySeconds) {
  if (!options_.now) options_.now = steadySeconds;
}

void LinuxHeavyReaders::setSurfaceSensor(std::string id) {
  const std::lock_guard lock(surfaceMutex_);
  surfaceSensor_ = std::move(id);
}

void LinuxHeavyReaders::refresh() {
  const double now = options_.now();
  const bool due = !discoveredAt_ || now - *discoveredAt_ >= kRediscoverySeconds;
  if (due) discoveredAt_ = now;
  if (due || hwmonLost_) {
    hwmon_.discover();
    ++discoveries_.hwmon;
  }
  if (due || powerLost_) {
    power_.discover();
    ++discoveries_.power;
  }
  if (due || gpuLost_) {
    gpu_.discover();
    ++discoveries_.gpu;
  }
  if (due || energyLost_) {
    energy_.discover();
    inventory_.setEnergyAvailable(energy_.available());
    ++discoveries_.energy;
  }
  hwmonLost_ = powerLost_ = gpuLost_ = energyLost_ = false;
}

std::vector<double> LinuxHeavyReaders::readFanSpeeds() {
  refresh();
  return hwmon_.readFans(hwmonLost_);
}

ThermalSample LinuxHeavyReaders::readThermal() {
  refresh();
  std::string surface;
  {
    const std::lock_guard lock(surfaceMutex_);
    surface = surfaceSensor_;
  }
  HwmonTemperatures temperatures = hwmon_.readTemperatures(surface, hwmonLost_);
  // A battery chip in hwmon is the battery's own sensor; power_supply's temp is the same
  // reading where the driver offers only that.
  if (!temperatures.thermal.batteryC) temperatures.thermal.batteryC = power_.readTemperature(powerLost_);
  keepLargest(temperatures.thermal.gpuC, nvidiaGPUTemperature_);
  inventory_.setSensors(std::move(temperatures.sensors));
  return temperatures.thermal;
}

std::optional<BatterySample> LinuxHeavyReaders::readBattery() {
  refresh();
  PowerSupplyReader::Readout readout = power_.read();
  powerLost_ = powerLost_ || readout.supplyLost;
  return readout.battery;
}

std::optional<GPUSample> LinuxHeavyReaders::readGPU() {
  refresh();
  std::vector<GPUListing> gpus = gpu_.read(gpuLost_);
  nvidiaGPUTemperature_.reset();
  for (const auto& gpu : gpus) {
    if (gpu.driver == "nvidia") keepLargest(nvidiaGPUTemperature_, gpu.temperatureC);
  }
  auto busiest = busiestGPU(gpus);
  inventory_.setGPUs(std::move(gpus));
  return busiest;
}

std::vector<ProcessSample> LinuxHeavyReaders::energyRows(const std::vector<ProcessSample>& processes) {
  refresh();
  return energy_.rows(processes, energyLost_);
}

AssertionMap LinuxHeavyReaders::readSleepBlockers() {
  if (!options_.askLogind) return {};
  return logind_.read();
}

}  // namespace quillmark
