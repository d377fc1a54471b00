#include <IOKit/IOKitLib.h>

#include "sensors/cf_properties_darwin.h"
#include "sensors/gpu_reader.h"

namespace quillmark {
namespace {

// The accelerator service and its core count, kept between calls (monitor's queue only).
struct Cache {
  io_service_t service = IO_OBJECT_NULL;
  std::optional<int> coreCount;
};

Cache& cache() {
  static Cache instance;
  return instance;
}

std::optional<int> readCoreCount(io_service_t service) {
  const auto key = makeCFString("gpu-core-count");
  if (!key) return std::nullopt;
  const CFRef<CFTypeRef> value(
      IORegistryEntrySearchCFProperty(service, kIOServicePlane, key.get(), kCFAllocatorDefault,
                                      kIORegistryIterateRecursively | kIORegistryIterateParents));
  const auto number = cfCast<CFNumberRef>(value.get(), CFNumberGetTypeID());
  std::int64_t count = 0;
  if (!number) return std::nullopt;
  CFNumberGetValue(number, kCFNumberSInt64Type, &count);
  return static_cast<int>(count);
}

void forget(Cache& c) {
  if (c.service != IO_OBJECT_NULL) IOObjectRelease(c.service);
  c.service = IO_OBJECT_NULL;
  c.coreCount.reset();
}

}  // namespace

std::optional<GPUSample> GPUReader::read() {
  Cache& c = cache();
  if (c.service == IO_OBJECT_NULL) {
    c.service = IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("IOAccelerator"));
    if (c.service == IO_OBJECT_NULL) return std::nullopt;
    c.coreCount = readCoreCount(c.service);
  }
  const auto key = makeCFString("PerformanceStatistics");
  const CFRef<CFTypeRef> statistics(
      key ? IORegistryEntryCreateCFProperty(c.service, key.get(), kCFAllocatorDefault, 0) : nullptr);
  const auto dictionary = cfCast<CFDictionaryRef>(statistics.get(), CFDictionaryGetTypeID());
  if (!dictionary) {
    forget(c);  // the accelerator may have been re-published: look for it again next time
    return std::nullopt;
  }
  GPUStatistics s;
  s.deviceUtilization = CFProperties::integer(dictionary, "Device Utilization %");
  s.rendererUtilization = CFProperties::integer(dictionary, "Renderer Utilization %");
  s.tilerUtilization = CFProperties::integer(dictionary, "Tiler Utilization %");
  if (const auto alloc = CFProperties::integer(dictionary, "Alloc system memory"); alloc && *alloc >= 0) {
    s.allocSystemMemory = static_cast<std::uint64_t>(*alloc);
  }
  return sampleFrom(s, c.coreCount);
}

}  // namespace quillmark
