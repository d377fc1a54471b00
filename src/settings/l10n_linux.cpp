#include <unistd.h>

#include <cstdlib>

#include "base/file_util.h"
#include "settings/l10n.h"
#include "settings/locale_names.h"

namespace quillmark {
namespace {

std::string executableDirectory() {
  char buffer[4096];
  const ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (n <= 0) return {};
  return parentDirectory(std::string(buffer, static_cast<std::size_t>(n)));
}

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
  if (const std::string exeDir = executableDirectory(); !exeDir.empty()) {
    const std::string installed = exeDir + "/../share/quillmark/resources";
    if (hasEnglishTable(installed)) return installed;
  }
  return QM_RESOURCES_DIR;
}

}  // namespace quillmark
