#include "sensors/smc.h"

namespace quillmark {

// Linux has no System Management Controller to open: the hwmon readers take its place, and
// every key here is absent.

std::optional<SMCKeyInfo> SMC::keyInfo(std::string_view) { return std::nullopt; }

std::optional<std::vector<std::uint8_t>> SMC::readBytes(std::string_view) { return std::nullopt; }

std::optional<double> SMC::readValue(std::string_view) { return std::nullopt; }

SMCWriteResult SMC::writeBytes(std::string_view, std::span<const std::uint8_t>) {
  return SMCWriteResult::noConnection;
}

}  // namespace quillmark
