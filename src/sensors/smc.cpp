#include "sensors/smc.h"

#include <cmath>
#include <cstring>

namespace quillmark {

std::uint32_t SMC::fourCharCode(std::string_view key) {
  std::uint32_t code = 0;
  for (std::size_t i = 0; i < key.size() && i < 4; ++i) {
    code = (code << 8) | static_cast<std::uint8_t>(key[i]);
  }
  return code;
}

std::optional<double> SMC::decode(std::span<const std::uint8_t> bytes) {
  if (bytes.size() == 4) {
    float value = 0;
    static_assert(sizeof value == 4);
    std::memcpy(&value, bytes.data(), 4);  // Apple silicon and x86 are both little-endian
    // -0.0 passes too: only a negative sign on a non-zero value rejects it.
    if (std::isfinite(value) && !(value < 0)) return static_cast<double>(value);
  }
  if (bytes.size() < 2) return std::nullopt;
  return static_cast<double>(((static_cast<unsigned>(bytes[0]) << 8) | bytes[1]) >> 2);
}

}  // namespace quillmark
