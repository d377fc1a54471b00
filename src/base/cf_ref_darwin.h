#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillmark {

// Owns one +1 CoreFoundation reference and releases it exactly once. Every CF object the program
// creates or copies goes into one of these, so no path can leak or double-release it. Holding NULL
// is allowed (a failed Create/Copy). Move-only; any thread, like the object it holds.
template <class Ref>
class CFRef {
 public:
  CFRef() = default;
  // Adopts a reference the caller owns (from a Create or Copy function).
  explicit CFRef(Ref ref) : ref_(ref) {}
  ~CFRef() { reset(); }
  CFRef(CFRef&& other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
  CFRef& operator=(CFRef&& other) noexcept {
    if (this != &other) {
      reset();
      ref_ = std::exchange(other.ref_, nullptr);
    }
    return *this;
  }
  CFRef(const CFRef&) = delete;
  CFRef& operator=(const CFRef&) = delete;

  // Takes a reference of its own to an object obtained by a Get function.
  [[nodiscard]] static CFRef retained(Ref ref) {
    if (ref) CFRetain(ref);
    return CFRef(ref);
  }

  [[nodiscard]] Ref get() const { return ref_; }
  explicit operator bool() const { return ref_ != nullptr; }
  void reset() {
    if (ref_) CFRelease(ref_);
    ref_ = nullptr;
  }

 private:
  Ref ref_ = nullptr;
};

// A new CFString holding text (UTF-8); NULL only if CF cannot allocate or the bytes are not UTF-8.
[[nodiscard]] inline CFRef<CFStringRef> makeCFString(std::string_view text) {
  return CFRef<CFStringRef>(
      CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                              static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

// The UTF-8 text of a CFString; absent when it cannot be converted.
[[nodiscard]] inline std::optional<std::string> toStdString(CFStringRef string) {
  if (!string) return std::nullopt;
  if (const char* fast = CFStringGetCStringPtr(string, kCFStringEncodingUTF8)) return std::string(fast);
  const CFIndex capacity =
      CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
  std::string buffer(static_cast<std::size_t>(capacity), '\0');
  if (!CFStringGetCString(string, buffer.data(), capacity, kCFStringEncodingUTF8)) return std::nullopt;
  buffer.resize(std::char_traits<char>::length(buffer.c_str()));
  return buffer;
}

// obj as the CF type Ref when its runtime type is typeID, else NULL (stored values are untrusted).
template <class Ref>
[[nodiscard]] inline Ref cfCast(CFTypeRef object, CFTypeID typeID) {
  return object && CFGetTypeID(object) == typeID ? static_cast<Ref>(object) : nullptr;
}

}  // namespace quillmark
