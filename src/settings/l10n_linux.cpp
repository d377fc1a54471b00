#include <unistd.h>

#include <cstdlib>

#include "base/file_util.h"
#include "base/paths.h"
#include "settings/l10n.h"
#include "settings/locale_names.h"

namespace quillmark {
namespace {

bool hasEnglishTable(const std::string& directory) {
  return access((directory + "/en.lproj/Localizable.strings").c_str(), R_OK) == 0;
}

}  // namespace

std::vector<std::string> systemPreferredLanguages() {
  return preferredLanguagesFromEnvironment([](const char* name) { return std::getenv(name); });
}

std::string stringTablesDirectory() {
  // An installed binary (<prefix>/bin) finds <prefix>/share/quillmark/resources; a binary run from
  // the build tree uses the source tree's folder, whose path is fixed at build time. Missing tables
  // there only mean keys are shown as they are.
  if (const std::string exe = executablePath(); !exe.empty()) {
    const std::string installed = parentDirectory(exe) + "/../share/quillmark/resources";
    if (hasEnglishTable(installed)) return installed;
  }
  return QM_RESOURCES_DIR;
}

}  // namespace quillmark
