#include <IOKit/IOKitLib.h>
#include <mach/mach.h>

#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "sensors/smc.h"
#include "sensors/smc_record.h"

namespace quillmark {
namespace {

// Bytes a key-info reply must hold to carry the description, and a value reply before its bytes.
constexpr std::size_t kKeyInfoReplyBytes = 32;
constexpr std::size_t kValueOffset = 48;

struct Connection {
  std::mutex mutex;
  io_connect_t handle = 0;  // 0: not open
  // Absent value: a negative entry, the key is never described again.
  std::map<std::string, std::optional<SMCKeyInfo>, std::less<>> keyInfoCache;
};

Connection& connection() {
  static Connection instance;
  return instance;
}

io_connect_t ensureConnection(Connection& c) {
  if (c.handle != 0) return c.handle;
  const io_service_t service = IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("AppleSMC"));
  if (service == IO_OBJECT_NULL) return 0;
  io_connect_t opened = 0;
  const kern_return_t result = IOServiceOpen(service, mach_task_self(), 0, &opened);
  IOObjectRelease(service);
  if (result != KERN_SUCCESS) return 0;
  c.handle = opened;
  return opened;
}

void closeConnection(Connection& c) {
  if (c.handle != 0) IOServiceClose(c.handle);
  c.handle = 0;
}

struct Reply {
  SMCParamRecord record;
  std::size_t size = 0;
};

std::optional<Reply> callOnce(io_connect_t handle, const SMCParamRecord& input) {
  Reply reply{};
  std::size_t size = sizeof reply.record;
  if (IOConnectCallStructMethod(handle, SMCCommand::kSelector, &input, sizeof input, &reply.record, &size) !=
      kIOReturnSuccess) {
    return std::nullopt;
  }
  reply.size = size;
  return reply;
}

// One exchange on an open connection, retried once on a fresh connection: a user client that
// the kernel dropped (sleep, SMC reset) fails every call until it is reopened.
// `reopened` tells whether the second connection could be had.
std::optional<Reply> exchange(Connection& c, const SMCParamRecord& input, bool& reopened) {
  reopened = true;
  if (auto reply = callOnce(c.handle, input)) return reply;
  closeConnection(c);
  if (ensureConnection(c) == 0) {
    reopened = false;
    return std::nullopt;
  }
  return callOnce(c.handle, input);
}

SMCParamRecord recordFor(std::string_view key, std::uint8_t command) {
  SMCParamRecord record{};
  record.key = SMC::fourCharCode(key);
  record.command = command;
  return record;
}

void fillKeyInfo(SMCParamRecord& record, const SMCKeyInfo& info) {
  record.dataSize = info.dataSize;
  std::memcpy(record.dataType, info.dataType.data(), 4);
  record.dataAttrs = info.dataAttrs;
}

// The key's description from the cache or the controller. A miss after the connection was had
// is remembered; without a connection nothing is remembered, so the key is tried again later.
std::optional<SMCKeyInfo> describe(Connection& c, std::string_view key) {
  if (const auto cached = c.keyInfoCache.find(key); cached != c.keyInfoCache.end()) return cached->second;
  if (ensureConnection(c) == 0) return std::nullopt;
  bool reopened = true;
  const auto reply = exchange(c, recordFor(key, SMCCommand::kGetKeyInfo), reopened);
  std::optional<SMCKeyInfo> info;
  if (reply && reply->size >= kKeyInfoReplyBytes && reply->record.dataSize >= 1 &&
      reply->record.dataSize <= 32) {
    info = SMCKeyInfo{};
    info->dataSize = reply->record.dataSize;
    std::memcpy(info->dataType.data(), reply->record.dataType, 4);
    info->dataAttrs = reply->record.dataAttrs;
  }
  c.keyInfoCache.emplace(std::string(key), info);
  return info;
}

// The exchange for a described key, opening the connection first if an earlier failure left it
// closed.
std::optional<Reply> exchangeForKey(Connection& c, const SMCParamRecord& input) {
  if (ensureConnection(c) == 0) return std::nullopt;
  bool reopened = true;
  return exchange(c, input, reopened);
}

}  // namespace

std::optional<SMCKeyInfo> SMC::keyInfo(std::string_view key) {
  Connection& c = connection();
  const std::lock_guard lock(c.mutex);
  return describe(c, key);
}

std::optional<std::vector<std::uint8_t>> SMC::readBytes(std::string_view key) {
  Connection& c = connection();
  const std::lock_guard lock(c.mutex);
  const auto info = describe(c, key);
  if (!info) return std::nullopt;
  SMCParamRecord input = recordFor(key, SMCCommand::kReadKey);
  fillKeyInfo(input, *info);
  // The result byte is not examined: a successful kernel call is a successful read.
  const auto reply = exchangeForKey(c, input);
  if (!reply || reply->size < kValueOffset + info->dataSize) return std::nullopt;
  return std::vector<std::uint8_t>(reply->record.bytes, reply->record.bytes + info->dataSize);
}

std::optional<double> SMC::readValue(std::string_view key) {
  const auto bytes = readBytes(key);
  if (!bytes) return std::nullopt;
  return decode(*bytes);
}

SMCWriteResult SMC::writeBytes(std::string_view key, std::span<const std::uint8_t> bytes) {
  Connection& c = connection();
  const std::lock_guard lock(c.mutex);
  if (ensureConnection(c) == 0) return SMCWriteResult::noConnection;
  const auto info = describe(c, key);
  if (!info) return SMCWriteResult::unknownKey;
  if (bytes.size() != info->dataSize) return SMCWriteResult::sizeMismatch;
  SMCParamRecord input = recordFor(key, SMCCommand::kWriteKey);
  fillKeyInfo(input, *info);
  std::memcpy(input.bytes, bytes.data(), bytes.size());
  const auto reply = exchangeForKey(c, input);
  if (!reply) return SMCWriteResult::callFailed;
  return reply->record.result == 0 ? SMCWriteResult::ok : SMCWriteResult::refused;
}

}  // namespace quillmark
