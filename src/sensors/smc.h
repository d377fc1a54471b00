#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace quillmark {

// How the System Management Controller describes one key: the number of value bytes (1-32), and
// the type code and attribute byte exactly as the controller sent them (only ever sent back).
struct SMCKeyInfo {
  std::uint32_t dataSize = 0;
  std::array<std::uint8_t, 4> dataType{};
  std::uint8_t dataAttrs = 0;
  bool operator==(const SMCKeyInfo&) const = default;
};

// What a write to the controller came to. Writes need root, so only the fan daemon makes them.
enum class SMCWriteResult {
  ok,
  noConnection,  // the controller could not be opened
  unknownKey,    // the key cannot be described (never asked again, like a read)
  sizeMismatch,  // the bytes given are not the key's dataSize
  callFailed,    // the kernel call failed twice (kIOReturnNotPrivileged when not root)
  refused,       // the controller answered with a non-zero result byte (e.g. 0x82 while
                 // thermalmonitord owns the fans)
};

// The one place that talks to the System Management Controller (the "AppleSMC" user client on
// macOS). One connection and one cache of key descriptions live for the whole process; a key that
// cannot be described is never asked for again. Every failure is an absent result, never an error.
// Callable from any thread: one mutex serialises the connection and the cache, since the sampler's
// queue and the main thread (fans, comfort cooling) both read. Other platforms have no controller:
// every read there is absent.
class SMC {
 public:
  SMC() = delete;

  // The number a key holds, decoded by the length of its bytes alone (see decode()).
  [[nodiscard]] static std::optional<double> readValue(std::string_view key);
  // The key's raw value bytes, exactly dataSize of them.
  [[nodiscard]] static std::optional<std::vector<std::uint8_t>> readBytes(std::string_view key);
  // The key's description (cached), so a writer can encode a value in the key's own type.
  [[nodiscard]] static std::optional<SMCKeyInfo> keyInfo(std::string_view key);
  // Writes exactly dataSize bytes into the key (command 6). Unlike a read, the controller's
  // result byte is checked, because a refused write must not look like a held fan floor.
  [[nodiscard]] static SMCWriteResult writeBytes(std::string_view key, std::span<const std::uint8_t> bytes);

  // The key's first four bytes folded big-end first: "TB0T" -> 0x54423054, "Tp0" -> 0x00547030.
  [[nodiscard]] static std::uint32_t fourCharCode(std::string_view key);
  // Exactly 4 bytes: a little-endian float, kept when finite and not negative. Otherwise (or when
  // the float is rejected) at least 2 bytes: the first two as big-endian 14.2 fixed point with the
  // fraction dropped, ((b0 << 8) | b1) >> 2. Fewer than 2 bytes: absent.
  [[nodiscard]] static std::optional<double> decode(std::span<const std::uint8_t> bytes);
};

}  // namespace quillmark
