#include <CoreFoundation/CoreFoundation.h>

#include <climits>

#include "settings/l10n.h"

namespace quillmark {
namespace {

// Owns one CoreFoundation reference.
template <class Ref>
class CFHolder {
 public:
  explicit CFHolder(Ref ref) : ref_(ref) {}
  ~CFHolder() {
    if (ref_) CFRelease(ref_);
  }
  CFHolder(const CFHolder&) = delete;
  CFHolder& operator=(const CFHolder&) = delete;
  [[nodiscard]] Ref get() const { return ref_; }

 private:
  Ref ref_;
};

std::string toStdString(CFStringRef string) {
  if (!string) return {};
  const CFIndex length = CFStringGetLength(string);
  const CFIndex capacity = CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8) + 1;
  std::string out(static_cast<std::size_t>(capacity), '\0');
  if (!CFStringGetCString(string, out.data(), capacity, kCFStringEncodingUTF8)) return {};
  out.resize(std::char_traits<char>::length(out.c_str()));
  return out;
}

}  // namespace

std::vector<std::string> systemPreferredLanguages() {
  std::vector<std::string> out;
  const CFHolder<CFArrayRef> languages(CFLocaleCopyPreferredLanguages());
  if (!languages.get()) return out;
  const CFIndex count = CFArrayGetCount(languages.get());
  for (CFIndex i = 0; i < count; ++i) {
    const void* item = CFArrayGetValueAtIndex(languages.get(), i);
    if (item && CFGetTypeID(item) == CFStringGetTypeID()) {
      out.push_back(toStdString(static_cast<CFStringRef>(item)));
    }
  }
  return out;
}

std::string stringTablesDirectory() {
  CFBundleRef bundle = CFBundleGetMainBundle();  // not owned
  if (!bundle) return {};
  const CFHolder<CFURLRef> url(CFBundleCopyResourcesDirectoryURL(bundle));
  if (!url.get()) return {};
  char path[PATH_MAX];
  if (!CFURLGetFileSystemRepresentation(url.get(), true, reinterpret_cast<UInt8*>(path), sizeof path))
    return {};
  return path;
}

}  // namespace quillmark
