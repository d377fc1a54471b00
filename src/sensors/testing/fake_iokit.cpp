#include "sensors/testing/fake_iokit.h"

#include <CoreFoundation/CFDate.h>
#include <IOKit/pwr_mgt/IOPMLib.h>
#include <dlfcn.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "sampling/testing/fake_darwin_kernel.h"
#include "sensors/smc_record.h"

namespace quillmark::fake_iokit {
namespace {

constexpr io_service_t kSMCService = 0x5100;
constexpr io_connect_t kFirstConnection = 0x6100;
constexpr io_service_t kFirstRegistryEntry = 0x5200;
constexpr std::size_t kKernelUsageRecord = 296;  // the macOS 13 coalition_resource_usage
constexpr std::size_t kEnergyOffset = 88;

IOKit& state() {
  static IOKit instance;
  return instance;
}

// What IOServiceMatching hands out: only the class name matters to the fake.
struct Matching {
  std::string name;
};

std::string keyText(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    if (const char c = static_cast<char>((code >> shift) & 0xFF); c != 0) text.push_back(c);
  }
  return text;
}

void answer(const SMCParamRecord& in, SMCParamRecord& out) {
  auto& k = state();
  out = SMCParamRecord{};
  out.key = in.key;
  const auto found = k.smcKeys.find(keyText(in.key));
  if (found == k.smcKeys.end()) {
    out.result = 0x84;  // key not found, in a successful kernel call
    return;
  }
  SMCKey& key = found->second;
  switch (in.command) {
    case SMCCommand::kGetKeyInfo:
      out.dataSize = key.reportedSize.value_or(static_cast<std::uint32_t>(key.bytes.size()));
      std::memcpy(out.dataType, key.type.data(), 4);
      out.dataAttrs = key.attrs;
      return;
    case SMCCommand::kReadKey:
      // The real controller answers a size it did not describe with "key size mismatch".
      if (in.dataSize != key.bytes.size()) {
        out.result = 0x87;
        return;
      }
      std::memcpy(out.bytes, key.bytes.data(), key.bytes.size());
      return;
    case SMCCommand::kWriteKey:
      out.result = in.dataSize != key.bytes.size() ? std::uint8_t{0x87} : k.writeResult;
      if (out.result == 0) key.bytes.assign(in.bytes, in.bytes + in.dataSize);
      return;
    default:
      out.result = 0x82;
  }
}

int coalitionUsage(std::uint64_t id, void* buffer, std::size_t size) {
  auto& k = state();
  k.coalitionBufferSizes.push_back(size);
  const auto found = k.coalitionEnergy.find(id);
  if (found == k.coalitionEnergy.end()) return errno = ESRCH, -1;
  unsigned char record[kKernelUsageRecord] = {};
  std::memcpy(record + kEnergyOffset, &found->second, sizeof found->second);
  // Like the kernel: never more than the caller's buffer, never more than its own record.
  std::memcpy(buffer, record, std::min(size, sizeof record));
  return 0;
}

}  // namespace

IOKit& iokit() { return state(); }

// The registry entry's port is its position in the (sorted) registry, so it stays the same
// across calls as long as the test does not change the set of entries.
io_service_t entryPort(const std::string& name) {
  io_service_t port = kFirstRegistryEntry;
  for (const auto& [entry, properties] : state().registry) {
    if (entry == name) return port;
    ++port;
  }
  return IO_OBJECT_NULL;
}

const std::string* entryName(io_registry_entry_t port) {
  io_service_t next = kFirstRegistryEntry;
  for (const auto& [entry, properties] : state().registry) {
    if (next++ == port) return &entry;
  }
  return nullptr;
}

CFTypeRef retained(CFTypeRef object) { return object ? CFRetain(object) : nullptr; }

void reset() {
  for (const auto& [name, properties] : state().registry) {
    if (properties) CFRelease(properties);
  }
  for (const auto& [name, properties] : state().inherited) {
    if (properties) CFRelease(properties);
  }
  if (state().assertions) CFRelease(state().assertions);
  // The SMC keeps its connection for the life of the process, so the one it holds stays valid.
  const io_connect_t held = state().openConnection;
  state() = IOKit{};
  state().openConnection = held;
  fake_darwin::reset();
}

std::uint32_t code(const std::string& key) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < key.size() && i < 4; ++i)
    value = (value << 8) | static_cast<std::uint8_t>(key[i]);
  return value;
}

}  // namespace quillmark::fake_iokit

using quillmark::SMCParamRecord;
using quillmark::fake_iokit::Matching;
using quillmark::fake_iokit::state;

extern "C" {

const mach_port_t kIOMainPortDefault = 0;

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  return reinterpret_cast<CFMutableDictionaryRef>(new Matching{name});
}

io_service_t IOServiceGetMatchingService(mach_port_t, CFDictionaryRef matching) {
  // Consumes the matching dictionary, as the real call does.
  const std::unique_ptr<const Matching> owned(reinterpret_cast<const Matching*>(matching));
  state().lookups.push_back(owned->name);
  if (owned->name == "AppleSMC")
    return state().smcPresent ? quillmark::fake_iokit::kSMCService : IO_OBJECT_NULL;
  return quillmark::fake_iokit::entryPort(owned->name);
}

kern_return_t IOObjectRelease(io_object_t) {
  ++state().servicesReleased;
  return KERN_SUCCESS;
}

kern_return_t IOServiceOpen(io_service_t service, task_port_t owningTask, uint32_t type,
                            io_connect_t* connect) {
  auto& k = state();
  if (service != quillmark::fake_iokit::kSMCService || owningTask != mach_task_self_ || type != 0)
    return kIOReturnBadArgument;
  if (k.openResult != KERN_SUCCESS) return k.openResult;
  ++k.opens;
  static io_connect_t next = quillmark::fake_iokit::kFirstConnection;
  k.openConnection = ++next;
  *connect = k.openConnection;
  return KERN_SUCCESS;
}

kern_return_t IOServiceClose(io_connect_t connect) {
  auto& k = state();
  if (connect != k.openConnection) return kIOReturnBadArgument;
  ++k.closes;
  k.openConnection = 0;
  return KERN_SUCCESS;
}

kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
                                        size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt) {
  auto& k = state();
  SMCParamRecord in{};
  std::memcpy(&in, inputStruct, std::min(inputStructCnt, sizeof in));
  quillmark::fake_iokit::Exchange seen{
      selector, inputStructCnt, *outputStructCnt, in.command, in.key, in.dataSize, {}, in.dataAttrs, {}};
  std::memcpy(seen.dataType.data(), in.dataType, 4);
  if (in.command == quillmark::SMCCommand::kWriteKey)
    seen.value.assign(in.bytes, in.bytes + std::min(in.dataSize, 32u));
  k.exchanges.push_back(seen);
  if (connection == 0 || connection != k.openConnection) return kIOReturnBadArgument;
  if (k.failingCalls > 0) {
    --k.failingCalls;
    return kIOReturnError;
  }
  if (selector != quillmark::SMCCommand::kSelector || inputStructCnt != sizeof in ||
      *outputStructCnt != sizeof in)
    return kIOReturnBadArgument;
  SMCParamRecord out{};
  quillmark::fake_iokit::answer(in, out);
  std::memcpy(outputStruct, &out, sizeof out);
  *outputStructCnt = sizeof out;
  return kIOReturnSuccess;
}

kern_return_t IORegistryEntryCreateCFProperties(io_registry_entry_t entry, CFMutableDictionaryRef* properties,
                                                CFAllocatorRef, IOOptionBits options) {
  const std::string* name = quillmark::fake_iokit::entryName(entry);
  if (!name || options != 0) return kIOReturnBadArgument;
  const CFTypeRef found = state().registry[*name];
  if (!found) return kIOReturnError;
  *properties = reinterpret_cast<CFMutableDictionaryRef>(const_cast<void*>(CFRetain(found)));
  return KERN_SUCCESS;
}

CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key, CFAllocatorRef,
                                          IOOptionBits options) {
  const std::string* name = quillmark::fake_iokit::entryName(entry);
  const CFTypeRef properties = name ? state().registry[*name] : nullptr;
  if (!properties || options != 0) return nullptr;
  return quillmark::fake_iokit::retained(CFDictionaryGetValue(static_cast<CFDictionaryRef>(properties), key));
}

CFTypeRef IORegistryEntrySearchCFProperty(io_registry_entry_t entry, const io_name_t plane, CFStringRef key,
                                          CFAllocatorRef, IOOptionBits options) {
  state().searchOptions.push_back(options);
  const std::string* name = quillmark::fake_iokit::entryName(entry);
  if (!name || std::strcmp(plane, kIOServicePlane) != 0) return nullptr;
  const CFTypeRef properties = state().inherited[*name];
  if (!properties) return nullptr;
  return quillmark::fake_iokit::retained(CFDictionaryGetValue(static_cast<CFDictionaryRef>(properties), key));
}

IOReturn IOPMCopyAssertionsByProcess(CFDictionaryRef* assertionsByPID) {
  if (state().assertionsResult != kIOReturnSuccess) return state().assertionsResult;
  *assertionsByPID = static_cast<CFDictionaryRef>(quillmark::fake_iokit::retained(state().assertions));
  return kIOReturnSuccess;
}

void* qm_fake_dlsym(void* handle, const char* symbol) {
  if (handle != RTLD_DEFAULT) return nullptr;
  if (std::strcmp(symbol, "coalition_info_resource_usage") == 0 && state().coalitionSymbol)
    return reinterpret_cast<void*>(&quillmark::fake_iokit::coalitionUsage);
  return nullptr;
}

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) { return state().now; }

}  // extern "C"
