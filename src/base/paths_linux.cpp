#include <cstdlib>

#include "base/paths.h"

namespace quillmark {
namespace {

// XDG base directories must be absolute; a relative or empty value is ignored.
std::string xdgDirectory(const char* variable, const char* fallbackUnderHome) {
  if (const char* value = std::getenv(variable); value && value[0] == '/') return value;
  return homeDirectory() + "/" + fallbackUnderHome;
}

}  // namespace

std::string configDirectory() { return xdgDirectory("XDG_CONFIG_HOME", ".config") + "/quillmark"; }

std::string logFilePath() {
  return xdgDirectory("XDG_STATE_HOME", ".local/state") + "/quillmark/Quillmark.log";
}

}  // namespace quillmark
