#include <langinfo.h>
#include <locale.h>

#include <cstdlib>

#include "base/paths.h"
#include "settings/l10n.h"
#include "settings/locale_names.h"

namespace quillmark {

std::vector<std::string> systemPreferredLanguages() {
  return preferredLanguagesFromEnvironment([](const char* name) { return std::getenv(name); });
}

// Relative to the running program, never a path fixed at build time: a binary copied away from
// its build tree must not pick up, or depend on, a source tree that may have moved or changed.
std::string stringTablesDirectory() { return findStringTablesNear(executablePath()); }

std::string systemTimeFormat() {
  // newlocale with "" reads LC_ALL, LC_TIME and LANG itself: the program need not have called
  // setlocale, and a locale that is not installed gives no answer rather than C's.
  const locale_t time = newlocale(LC_TIME_MASK, "", static_cast<locale_t>(0));
  if (time == static_cast<locale_t>(0)) return {};
  std::string format = nl_langinfo_l(T_FMT, time);
  freelocale(time);
  return format;
}

}  // namespace quillmark
