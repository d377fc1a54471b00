#include "fans/comfort_sensors.h"

#include <vector>

#include "fans/comfort_law.h"
#include "sensors/thermal_reader.h"

namespace quillmark {

std::optional<double> SmcComfortSensors::surfaceC() {
  std::vector<std::optional<double>> readings;
  for (const std::string_view key : ThermalReader::surfaceKeys) readings.push_back(readKey_(key));
  return ComfortLaw::warmest(readings);
}

}  // namespace quillmark
