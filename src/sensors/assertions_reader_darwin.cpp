#include <IOKit/pwr_mgt/IOPMLib.h>

#include "sensors/assertions_reader.h"
#include "sensors/cf_properties_darwin.h"

namespace quillmark {
namespace {

struct Collect {
  AssertionMap* map;
};

void collectProcess(const void* key, const void* value, void* context) {
  auto& out = *static_cast<Collect*>(context)->map;
  const auto pidNumber = cfCast<CFNumberRef>(key, CFNumberGetTypeID());
  const auto assertions = cfCast<CFArrayRef>(value, CFArrayGetTypeID());
  if (!pidNumber || !assertions) return;
  std::int64_t pid = 0;
  CFNumberGetValue(pidNumber, kCFNumberSInt64Type, &pid);
  std::vector<std::string> names;
  const CFIndex count = CFArrayGetCount(assertions);
  for (CFIndex i = 0; i < count; ++i) {
    // Entries may be kCFBooleanFalse or other non-dictionaries; they are skipped.
    const auto assertion =
        cfCast<CFDictionaryRef>(CFArrayGetValueAtIndex(assertions, i), CFDictionaryGetTypeID());
    if (!assertion) continue;
    const auto type = CFProperties::string(assertion, "AssertType");
    if (!type) continue;
    const auto process = CFProperties::string(assertion, "Process Name");
    if (!AssertionsReader::counts(*type, process ? std::optional<std::string_view>(*process) : std::nullopt))
      continue;
    names.push_back(*type);
  }
  if (!names.empty()) out[static_cast<std::int32_t>(pid)] = std::move(names);
}

}  // namespace

AssertionMap AssertionsReader::readSleepBlockers() {
  AssertionMap map;
  CFDictionaryRef raw = nullptr;
  const IOReturn result = IOPMCopyAssertionsByProcess(&raw);
  const CFRef<CFDictionaryRef> byProcess(raw);
  if (result != kIOReturnSuccess || !cfCast<CFDictionaryRef>(byProcess.get(), CFDictionaryGetTypeID()))
    return map;
  Collect context{&map};
  CFDictionaryApplyFunction(byProcess.get(), collectProcess, &context);
  return map;
}

}  // namespace quillmark
