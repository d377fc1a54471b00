#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillmark {

// The 80-byte parameter record the AppleSMC user client takes and returns through selector 2
// (little-endian integers; the same layout in both directions). dataSize is 32-bit: the 64-bit
// IOByteCount of old headers makes an 88-byte record that the kernel rejects.
struct SMCParamRecord {
  std::uint32_t key = 0;  // four-character code, stored in the machine's (little-endian) order
  std::uint8_t version[6] = {};
  std::uint8_t padding0[2] = {};
  std::uint8_t powerLimit[16] = {};
  std::uint32_t dataSize = 0;
  std::uint8_t dataType[4] = {};
  std::uint8_t dataAttrs = 0;
  std::uint8_t padding1[3] = {};
  std::uint8_t result = 0;  // the controller's own result code; 0 is success
  std::uint8_t status = 0;
  std::uint8_t command = 0;
  std::uint8_t padding2 = 0;
  std::uint32_t data32 = 0;
  std::uint8_t bytes[32] = {};
};

static_assert(sizeof(SMCParamRecord) == 80, "the SMC parameter record is 80 bytes");
static_assert(offsetof(SMCParamRecord, dataSize) == 28, "key-info data size at 28");
static_assert(offsetof(SMCParamRecord, dataType) == 32, "key-info data type at 32");
static_assert(offsetof(SMCParamRecord, dataAttrs) == 36, "key-info attributes at 36");
static_assert(offsetof(SMCParamRecord, result) == 40, "result byte at 40");
static_assert(offsetof(SMCParamRecord, command) == 42, "command byte at 42");
static_assert(offsetof(SMCParamRecord, data32) == 44, "data word at 44");
static_assert(offsetof(SMCParamRecord, bytes) == 48, "value bytes at 48");

// The user-client selector and the commands sent in the command byte.
namespace SMCCommand {
inline constexpr std::uint32_t kSelector = 2;
inline constexpr std::uint8_t kReadKey = 5;
inline constexpr std::uint8_t kWriteKey = 6;
inline constexpr std::uint8_t kGetKeyInfo = 9;
}  // namespace SMCCommand

}  // namespace quillmark
