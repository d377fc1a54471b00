#include <cstring>
#include <memory>

#include "fans/daemon/smc_typed_access.h"
#include "sensors/smc.h"

namespace quillmark {

std::unique_ptr<SmcFanAccess> SmcFanAccess::open() {
  // Every Mac with an SMC describes its key count; no description means no controller.
  if (!SMC::keyInfo("#KEY")) return nullptr;
  SmcTypedAccess::Raw raw;
  raw.describe = [](std::string_view key) -> std::optional<SmcTypedAccess::KeyType> {
    const auto info = SMC::keyInfo(key);
    if (!info) return std::nullopt;
    // The controller sends the type as a native 32-bit FourCC ('flt ' = 0x666C7420); the codec
    // wants its characters in reading order.
    std::uint32_t packed = 0;
    std::memcpy(&packed, info->dataType.data(), sizeof packed);
    return SmcTypedAccess::KeyType{
        {static_cast<std::uint8_t>(packed >> 24), static_cast<std::uint8_t>(packed >> 16),
         static_cast<std::uint8_t>(packed >> 8), static_cast<std::uint8_t>(packed)},
        info->dataSize};
  };
  raw.readBytes = [](std::string_view key) { return SMC::readBytes(key); };
  raw.writeBytes = [](std::string_view key, std::span<const std::uint8_t> bytes) {
    return SMC::writeBytes(key, bytes) == SMCWriteResult::ok;
  };
  return std::make_unique<SmcTypedAccess>(std::move(raw));
}

}  // namespace quillmark
