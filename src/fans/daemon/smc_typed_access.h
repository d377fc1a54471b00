#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "fans/daemon/smc_fan_backend.h"

namespace quillmark {

// Numbers in and out of SMC keys in each key's own type: the fan daemon writes a mode (ui8 on
// Apple silicon; writing a 4-byte float into it would store 0) and a target speed (flt there,
// fpe2 on older machines). The raw key access is passed in, so the codec is tested without a
// controller. Daemon thread only.
class SmcTypedAccess final : public SmcFanAccess {
 public:
  // The key's type code (e.g. "flt ", "ui8 ") and value size in bytes.
  struct KeyType {
    std::array<std::uint8_t, 4> code{};
    std::uint32_t size = 0;
  };
  struct Raw {
    std::function<std::optional<KeyType>(std::string_view key)> describe;
    std::function<std::optional<std::vector<std::uint8_t>>(std::string_view key)> readBytes;
    std::function<bool(std::string_view key, std::span<const std::uint8_t> bytes)> writeBytes;
  };

  explicit SmcTypedAccess(Raw raw) : raw_(std::move(raw)) {}

  std::optional<double> read(std::string_view key) override;
  bool write(std::string_view key, double value) override;

  // The codec itself. Absent for a type it does not know, a size that does not fit the type, or
  // (encoding) a value the type cannot hold.
  [[nodiscard]] static std::optional<double> decode(const KeyType& type, std::span<const std::uint8_t> bytes);
  [[nodiscard]] static std::optional<std::vector<std::uint8_t>> encode(const KeyType& type, double value);

 private:
  Raw raw_;
};

}  // namespace quillmark
