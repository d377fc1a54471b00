// ICU rather than towlower over UTF-32: towlower maps one code point to one code point, so it
// cannot fold "ß" to "ss" or "ﬁ" to "fi", depends on the C locale the program happens to run
// under, and glibc's tables lag Unicode. ICU's full case folding is the Unicode-defined
// caseless match; the only language-dependent folding (Turkish and Azerbaijani dotted and
// dotless i) is chosen from the user's locale.

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cstring>

#include "processes/text_search.h"

namespace quillmark::TextSearch {
namespace {

std::uint32_t foldOptions() {
  static const std::uint32_t options = [] {
    const char* language = icu::Locale::getDefault().getLanguage();
    const bool turkic = std::strcmp(language, "tr") == 0 || std::strcmp(language, "az") == 0;
    return turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
  }();
  return options;
}

icu::UnicodeString folded(std::string_view utf8) {
  icu::UnicodeString text =
      icu::UnicodeString::fromUTF8(icu::StringPiece(utf8.data(), static_cast<std::int32_t>(utf8.size())));
  text.foldCase(foldOptions());
  return text;
}

}  // namespace

bool containsIgnoringCase(std::string_view text, std::string_view needle) {
  if (needle.empty()) return true;
  return folded(text).indexOf(folded(needle)) >= 0;
}

}  // namespace quillmark::TextSearch
