#include <CoreFoundation/CoreFoundation.h>

#include <vector>

#include "base/cf_ref_darwin.h"
#include "base/defaults_store.h"

namespace quillmark {
namespace {

// The application's own defaults domain (the bundle identifier, "com.quillmark.app"), through
// CFPreferences. Kinds map one to one: bool <-> CFBoolean, double <-> CFNumber, string <->
// CFString, string list <-> CFArray of CFString. A stored value of any other shape (written by
// hand with `defaults write`, say) reads as absent, so callers fall back to their default.
class PreferencesDefaultsStore final : public DefaultsStore {
 public:
  std::optional<DefaultsValue> get(std::string_view key) const override {
    const CFRef<CFStringRef> cfKey = makeCFString(key);
    if (!cfKey) return std::nullopt;
    const CFRef<CFPropertyListRef> value(
        CFPreferencesCopyAppValue(cfKey.get(), kCFPreferencesCurrentApplication));
    return fromPropertyList(value.get());
  }

  void set(std::string_view key, DefaultsValue value) override {
    const CFRef<CFStringRef> cfKey = makeCFString(key);
    const CFRef<CFPropertyListRef> plist = toPropertyList(value);
    if (!cfKey || !plist) return;
    CFPreferencesSetAppValue(cfKey.get(), plist.get(), kCFPreferencesCurrentApplication);
    // The store promises that a write has reached storage when set() returns.
    (void)CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication);
  }

  void remove(std::string_view key) override {
    const CFRef<CFStringRef> cfKey = makeCFString(key);
    if (!cfKey) return;
    CFPreferencesSetAppValue(cfKey.get(), nullptr, kCFPreferencesCurrentApplication);
    (void)CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication);
  }

 private:
  static std::optional<DefaultsValue> fromPropertyList(CFPropertyListRef value) {
    if (!value) return std::nullopt;
    // CFBoolean first: a CFNumber never answers to the boolean type ID, so a stored bool cannot be
    // mistaken for the number 1 or back.
    if (auto boolean = cfCast<CFBooleanRef>(value, CFBooleanGetTypeID()))
      return CFBooleanGetValue(boolean) != 0;
    if (auto number = cfCast<CFNumberRef>(value, CFNumberGetTypeID())) {
      double out = 0;
      (void)CFNumberGetValue(number, kCFNumberDoubleType, &out);  // an integer converts exactly enough
      return out;
    }
    if (auto string = cfCast<CFStringRef>(value, CFStringGetTypeID())) {
      if (auto text = toStdString(string)) return *text;
      return std::nullopt;
    }
    if (auto array = cfCast<CFArrayRef>(value, CFArrayGetTypeID())) {
      std::vector<std::string> strings;
      const CFIndex count = CFArrayGetCount(array);
      strings.reserve(static_cast<std::size_t>(count));
      for (CFIndex i = 0; i < count; ++i) {
        auto element = cfCast<CFStringRef>(CFArrayGetValueAtIndex(array, i), CFStringGetTypeID());
        auto text = toStdString(element);
        if (!text) return std::nullopt;  // a list with a non-string is not a string list
        strings.push_back(std::move(*text));
      }
      return strings;
    }
    return std::nullopt;
  }

  static CFRef<CFPropertyListRef> toPropertyList(const DefaultsValue& value) {
    if (const bool* boolean = std::get_if<bool>(&value)) {
      return CFRef<CFPropertyListRef>::retained(*boolean ? kCFBooleanTrue : kCFBooleanFalse);
    }
    if (const double* number = std::get_if<double>(&value)) {
      return CFRef<CFPropertyListRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, number));
    }
    if (const std::string* text = std::get_if<std::string>(&value)) {
      CFRef<CFStringRef> string = makeCFString(*text);
      return CFRef<CFPropertyListRef>::retained(string.get());
    }
    const auto& list = std::get<std::vector<std::string>>(value);
    std::vector<CFRef<CFStringRef>> owned;
    std::vector<const void*> elements;
    owned.reserve(list.size());
    elements.reserve(list.size());
    for (const std::string& item : list) {
      owned.push_back(makeCFString(item));
      if (!owned.back()) return {};
      elements.push_back(owned.back().get());
    }
    return CFRef<CFPropertyListRef>(CFArrayCreate(
        kCFAllocatorDefault, elements.data(), static_cast<CFIndex>(elements.size()), &kCFTypeArrayCallBacks));
  }
};

}  // namespace

DefaultsStore& DefaultsStore::shared() {
  static PreferencesDefaultsStore store;
  return store;
}

}  // namespace quillmark
