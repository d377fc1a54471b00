#pragma once

// A scripted stand-in for the IOKit user-client calls, the coalition usage call and the clock
// that the darwin sensor readers make, linked with sampling/testing/fake_darwin_kernel for the
// Mach and libproc parts. Tests fill FakeIOKit, call a reader, then look at the exchanges it
// made. Single-threaded: one test at a time.

#include <IOKit/IOKitLib.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillmark::fake_iokit {

// One key the fake controller knows.
struct SMCKey {
  std::array<std::uint8_t, 4> type{'f', 'l', 't', ' '};
  std::vector<std::uint8_t> bytes;
  // Overrides the size the key-info reply reports (to script 0 or 33).
  std::optional<std::uint32_t> reportedSize;
  std::uint8_t attrs = 0x80;
};

// One IOConnectCallStructMethod the reader made, as the controller saw it.
struct Exchange {
  std::uint32_t selector = 0;
  std::size_t inputSize = 0;
  std::size_t outputCapacity = 0;
  std::uint8_t command = 0;
  std::uint32_t key = 0;
  std::uint32_t dataSize = 0;
  std::array<std::uint8_t, 4> dataType{};
  std::uint8_t dataAttrs = 0;
  std::vector<std::uint8_t> value;  // the bytes sent with a write
};

struct IOKit {
  bool smcPresent = true;
  kern_return_t openResult = KERN_SUCCESS;
  std::map<std::string, SMCKey> smcKeys;  // by the key text, e.g. "TB0T"
  // The next this many calls fail in the kernel (before the controller sees them).
  int failingCalls = 0;
  // The result byte written replies carry (0x82 while the system owns the fans).
  std::uint8_t writeResult = 0;
  std::vector<Exchange> exchanges;
  int opens = 0;
  int closes = 0;
  int servicesReleased = 0;
  io_connect_t openConnection = 0;  // 0 while closed

  // coalition_info_resource_usage: absent hides the symbol; by coalition id the cumulative energy
  // in nanojoules (unknown ids fail with ESRCH).
  bool coalitionSymbol = true;
  std::map<std::uint64_t, std::uint64_t> coalitionEnergy;
  std::vector<std::size_t> coalitionBufferSizes;

  // CFAbsoluteTimeGetCurrent.
  double now = 700'000'000.0;

  // Registry entries by class name ("AppleSmartBattery", "IOAccelerator") and their property
  // dictionary (a +1 reference the fake owns; null: the properties cannot be read).
  std::map<std::string, CFTypeRef> registry;
  // What IORegistryEntrySearchCFProperty finds, by the entry's class (its parents' properties).
  std::map<std::string, CFTypeRef> inherited;
  std::vector<std::string> lookups;  // class names asked of IOServiceGetMatchingService
  std::vector<IOOptionBits> searchOptions;

  // IOPMCopyAssertionsByProcess: the result code and the dictionary handed out (owned here).
  IOReturn assertionsResult = kIOReturnSuccess;
  CFTypeRef assertions = nullptr;
};

IOKit& iokit();
// Resets both this fake and the Mach/libproc one, releasing the CF objects it was given.
void reset();

// The four-character code of a key, as the controller receives it.
std::uint32_t code(const std::string& key);

}  // namespace quillmark::fake_iokit
