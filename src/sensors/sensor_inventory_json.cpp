#include "sensors/sensor_inventory_json.h"

#include <cmath>

#include "base/shared_instance.h"

namespace quillmark {
namespace {

using nlohmann::json;

template <class T>
json orNull(const std::optional<T>& value) {
  if constexpr (std::is_floating_point_v<T>) {
    if (value && !std::isfinite(*value)) return nullptr;
  }
  return value ? json(*value) : json(nullptr);
}

}  // namespace

void appendSensorLists(json& object, const SensorInventory& inventory) {
  json sensors = json::array();
  for (const auto& s : inventory.sensors()) {
    sensors.push_back({{"id", s.id}, {"chip", s.chip}, {"label", s.label}, {"valueC", orNull(s.valueC)}});
  }
  json gpus = json::array();
  for (const auto& g : inventory.gpus()) {
    gpus.push_back({{"name", g.name},
                    {"driver", g.driver},
                    {"busyPercent", orNull(g.busyPercent)},
                    {"memoryUsedBytes", orNull(g.memoryUsedBytes)},
                    {"memoryTotalBytes", orNull(g.memoryTotalBytes)},
                    {"temperatureC", orNull(g.temperatureC)},
                    {"coreCount", orNull(g.coreCount)},
                    {"suspended", g.suspended}});
  }
  object["sensors"] = std::move(sensors);
  object["gpus"] = std::move(gpus);
  object["energyAvailable"] = inventory.energyAvailable();
}

void appendSensorLists(json& object) {
  if (SharedInstance<SensorInventory>::installed()) {
    appendSensorLists(object, SharedInstance<SensorInventory>::get());
  } else {
    appendSensorLists(object, SensorInventory{});
  }
}

}  // namespace quillmark
