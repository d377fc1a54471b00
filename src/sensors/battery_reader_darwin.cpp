#include <IOKit/IOKitLib.h>

#include "sensors/battery_reader.h"
#include "sensors/cf_properties_darwin.h"

namespace quillmark {

std::optional<BatterySample> BatteryReader::read() {
  const io_service_t entry =
      IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("AppleSmartBattery"));
  if (entry == IO_OBJECT_NULL) return std::nullopt;  // a desktop Mac
  CFMutableDictionaryRef raw = nullptr;
  const kern_return_t result = IORegistryEntryCreateCFProperties(entry, &raw, kCFAllocatorDefault, 0);
  const CFRef<CFMutableDictionaryRef> properties(raw);
  IOObjectRelease(entry);
  if (result != KERN_SUCCESS || !cfCast<CFDictionaryRef>(properties.get(), CFDictionaryGetTypeID())) {
    return std::nullopt;
  }
  const CFDictionaryRef p = properties.get();
  BatteryProperties fields;
  fields.currentCapacity = CFProperties::integer(p, "CurrentCapacity");
  fields.isCharging = CFProperties::boolean(p, "IsCharging");
  fields.fullyCharged = CFProperties::boolean(p, "FullyCharged");
  fields.externalConnected = CFProperties::boolean(p, "ExternalConnected");
  fields.cycleCount = CFProperties::integer(p, "CycleCount");
  fields.maxCapacity = CFProperties::integer(p, "MaxCapacity");
  fields.voltage = CFProperties::integer(p, "Voltage");
  fields.amperage = CFProperties::integer(p, "Amperage");
  return sampleFrom(fields);
}

}  // namespace quillmark
