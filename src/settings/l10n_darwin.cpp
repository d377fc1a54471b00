#include <CoreFoundation/CoreFoundation.h>

#include <climits>

#include "base/cf_ref_darwin.h"
#include "settings/format.h"
#include "settings/l10n.h"

namespace quillmark {

std::vector<std::string> systemPreferredLanguages() {
  std::vector<std::string> out;
  const CFRef<CFArrayRef> languages(CFLocaleCopyPreferredLanguages());
  if (!languages) return out;
  const CFIndex count = CFArrayGetCount(languages.get());
  for (CFIndex i = 0; i < count; ++i) {
    const auto code = cfCast<CFStringRef>(CFArrayGetValueAtIndex(languages.get(), i), CFStringGetTypeID());
    if (auto text = toStdString(code)) out.push_back(std::move(*text));
  }
  return out;
}

std::string systemTimeFormat() {
  // "jms": hour on the locale's clock, minute, second; the locale adds its AM/PM and separators.
  const CFRef<CFLocaleRef> locale(CFLocaleCopyCurrent());
  const CFRef<CFStringRef> skeleton = makeCFString("jms");
  if (!locale || !skeleton) return {};
  const CFRef<CFStringRef> pattern(
      CFDateFormatterCreateDateFormatFromTemplate(kCFAllocatorDefault, skeleton.get(), 0, locale.get()));
  const auto text = toStdString(pattern.get());
  return text ? Format::timeFormatFromPattern(*text) : std::string();
}

std::string stringTablesDirectory() {
  CFBundleRef bundle = CFBundleGetMainBundle();  // not owned
  if (!bundle) return {};
  const CFRef<CFURLRef> url(CFBundleCopyResourcesDirectoryURL(bundle));
  if (!url) return {};
  char path[PATH_MAX];
  if (!CFURLGetFileSystemRepresentation(url.get(), true, reinterpret_cast<UInt8*>(path), sizeof path))
    return {};
  return path;
}

}  // namespace quillmark
