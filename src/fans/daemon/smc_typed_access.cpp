#include "fans/daemon/smc_typed_access.h"

#include <bit>
#include <cmath>
#include <string_view>

namespace quillmark {
namespace {

bool is(const SmcTypedAccess::KeyType& type, std::string_view code) {
  return code.size() == 4 &&
         std::equal(code.begin(), code.end(), type.code.begin(),
                    [](char c, std::uint8_t b) { return static_cast<std::uint8_t>(c) == b; });
}

std::uint32_t bigEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (const std::uint8_t b : bytes) value = (value << 8) | b;
  return value;
}

std::vector<std::uint8_t> toBigEndian(std::uint32_t value, std::size_t size) {
  std::vector<std::uint8_t> out(size);
  for (std::size_t i = size; i-- > 0; value >>= 8) out[i] = static_cast<std::uint8_t>(value & 0xFF);
  return out;
}

// An unsigned whole number that fits size bytes, or absent.
std::optional<std::uint32_t> unsignedFor(double value, std::size_t size) {
  if (!std::isfinite(value) || value < 0) return std::nullopt;
  const double rounded = std::round(value);
  const double limit = size >= 4 ? 4294967295.0 : static_cast<double>((1u << (8 * size)) - 1);
  if (rounded > limit) return std::nullopt;
  return static_cast<std::uint32_t>(rounded);
}

}  // namespace

std::optional<double> SmcTypedAccess::decode(const KeyType& type, std::span<const std::uint8_t> bytes) {
  if (bytes.size() != type.size) return std::nullopt;
  if (is(type, "flt ") && bytes.size() == 4) {
    // Apple silicon stores floats in the machine's own (little-endian) order.
    const std::uint32_t bits =
        static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
        static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
    return static_cast<double>(std::bit_cast<float>(bits));
  }
  if ((is(type, "ui8 ") || is(type, "flag")) && bytes.size() == 1) return bytes[0];
  if (is(type, "ui16") && bytes.size() == 2) return bigEndian(bytes);
  if (is(type, "ui32") && bytes.size() == 4) return bigEndian(bytes);
  if (is(type, "fpe2") && bytes.size() == 2) return bigEndian(bytes) / 4.0;
  return std::nullopt;
}

std::optional<std::vector<std::uint8_t>> SmcTypedAccess::encode(const KeyType& type, double value) {
  if (is(type, "flt ") && type.size == 4) {
    if (!std::isfinite(value)) return std::nullopt;
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    return std::vector<std::uint8_t>{static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                     static_cast<std::uint8_t>(bits >> 16),
                                     static_cast<std::uint8_t>(bits >> 24)};
  }
  std::size_t size = 0;
  double scaled = value;
  if ((is(type, "ui8 ") || is(type, "flag")) && type.size == 1) size = 1;
  if (is(type, "ui16") && type.size == 2) size = 2;
  if (is(type, "ui32") && type.size == 4) size = 4;
  if (is(type, "fpe2") && type.size == 2) {
    size = 2;
    scaled = value * 4.0;
  }
  if (size == 0) return std::nullopt;
  const auto whole = unsignedFor(scaled, size);
  if (!whole) return std::nullopt;
  return toBigEndian(*whole, size);
}

std::optional<double> SmcTypedAccess::read(std::string_view key) {
  const auto type = raw_.describe(key);
  if (!type) return std::nullopt;
  const auto bytes = raw_.readBytes(key);
  if (!bytes) return std::nullopt;
  return decode(*type, *bytes);
}

bool SmcTypedAccess::write(std::string_view key, double value) {
  const auto type = raw_.describe(key);
  if (!type) return false;
  const auto bytes = encode(*type, value);
  return bytes && raw_.writeBytes(key, *bytes);
}

}  // namespace quillmark
