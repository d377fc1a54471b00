#pragma once

#include <nlohmann/json.hpp>

#include "sensors/sensor_inventory.h"

namespace quillmark {

// Adds "sensors" (every temperature sensor: id, chip, label, valueC) and "gpus" (every GPU:
// name, driver, busyPercent, memoryUsedBytes, memoryTotalBytes, temperatureC, coreCount,
// suspended) and "energyAvailable" (whether per-process energy rows can be had) to a JSON
// object, from the installed SensorInventory; empty lists when none is installed. Absent values
// are null. Main thread.
void appendSensorLists(nlohmann::json& object);

// The same from a given inventory.
void appendSensorLists(nlohmann::json& object, const SensorInventory& inventory);

}  // namespace quillmark
