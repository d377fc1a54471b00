#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/cf_ref_darwin.h"

namespace quillmark::CFProperties {

// Typed lookups in a registry or assertion dictionary, whose values are not to be trusted: a
// missing key or a value of another type is absent.

[[nodiscard]] inline CFTypeRef value(CFDictionaryRef dictionary, std::string_view key) {
  const auto name = makeCFString(key);
  return name ? CFDictionaryGetValue(dictionary, name.get()) : nullptr;
}

[[nodiscard]] inline std::optional<std::int64_t> integer(CFDictionaryRef dictionary, std::string_view key) {
  const auto number = cfCast<CFNumberRef>(value(dictionary, key), CFNumberGetTypeID());
  std::int64_t result = 0;
  if (!number) return std::nullopt;
  CFNumberGetValue(number, kCFNumberSInt64Type, &result);
  return result;
}

[[nodiscard]] inline std::optional<bool> boolean(CFDictionaryRef dictionary, std::string_view key) {
  const auto flag = cfCast<CFBooleanRef>(value(dictionary, key), CFBooleanGetTypeID());
  if (!flag) return std::nullopt;
  return CFBooleanGetValue(flag) != 0;
}

[[nodiscard]] inline std::optional<std::string> string(CFDictionaryRef dictionary, std::string_view key) {
  return toStdString(cfCast<CFStringRef>(value(dictionary, key), CFStringGetTypeID()));
}

}  // namespace quillmark::CFProperties
