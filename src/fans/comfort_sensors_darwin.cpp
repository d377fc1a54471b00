#include "fans/comfort_sensors.h"
#include "sensors/smc.h"

namespace quillmark {

std::unique_ptr<ComfortSensors> ComfortSensors::makePlatform(std::function<std::string()> /*surfaceSensor*/) {
  return std::make_unique<SmcComfortSensors>([](std::string_view key) { return SMC::readValue(key); });
}

}  // namespace quillmark
