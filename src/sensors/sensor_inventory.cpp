#include "sensors/sensor_inventory.h"

namespace quillmark {

void SensorInventory::setSensors(std::vector<SensorListing> sensors) {
  const std::lock_guard lock(mutex_);
  sensors_ = std::move(sensors);
}

void SensorInventory::setGPUs(std::vector<GPUListing> gpus) {
  const std::lock_guard lock(mutex_);
  gpus_ = std::move(gpus);
}

void SensorInventory::setEnergyAvailable(bool available) {
  const std::lock_guard lock(mutex_);
  energyAvailable_ = available;
}

std::vector<SensorListing> SensorInventory::sensors() const {
  const std::lock_guard lock(mutex_);
  return sensors_;
}

std::vector<GPUListing> SensorInventory::gpus() const {
  const std::lock_guard lock(mutex_);
  return gpus_;
}

bool SensorInventory::energyAvailable() const {
  const std::lock_guard lock(mutex_);
  return energyAvailable_;
}

}  // namespace quillmark
