#include <CoreFoundation/CoreFoundation.h>

#include "base/cf_ref_darwin.h"
#include "processes/text_search.h"

namespace quillmark::TextSearch {

// CoreFoundation's localized, case-insensitive search: the same comparison the system's own
// search fields use, in the user's current locale.
bool containsIgnoringCase(std::string_view text, std::string_view needle) {
  if (needle.empty()) return true;
  const auto haystack = makeCFString(text);
  const auto wanted = makeCFString(needle);
  if (!haystack || !wanted) return false;
  const CFRef<CFLocaleRef> locale(CFLocaleCopyCurrent());
  return CFStringFindWithOptionsAndLocale(
      haystack.get(), wanted.get(), CFRangeMake(0, CFStringGetLength(haystack.get())),
      kCFCompareCaseInsensitive | kCFCompareLocalized, locale.get(), nullptr);
}

}  // namespace quillmark::TextSearch
