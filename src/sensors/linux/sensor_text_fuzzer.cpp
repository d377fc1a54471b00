// libFuzzer target: the texts and bytes the sensor readers take from the kernel. A driver may
// write anything into a sysfs attribute, any process's fdinfo may be odd, and SMC replies are
// raw bytes; none of them may crash a reader.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "sensors/linux/drm_fdinfo.h"
#include "sensors/linux/sysfs_text.h"
#include "sensors/smc.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  (void)quillmark::SysfsText::integer(text);
  (void)quillmark::SysfsText::milliCelsius(text);
  (void)quillmark::SysfsText::rpm(text);
  if (const auto usage = quillmark::parseDrmFdinfo(text)) {
    quillmark::DrmBusyTracker tracker;
    (void)tracker.update({*usage}, 1.0);
    (void)tracker.update({*usage}, 2.0);
  }
  (void)quillmark::SMC::decode(std::span<const std::uint8_t>(data, size));
  (void)quillmark::SMC::fourCharCode(text);
  return 0;
}
