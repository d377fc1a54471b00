#include <unistd.h>

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

std::string executablePath() {
  char buffer[4096];
  const ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer);
  // A path that fills the buffer may have been cut; no answer is better than a wrong one.
  if (n <= 0 || static_cast<std::size_t>(n) >= sizeof buffer) return {};
  return std::string(buffer, static_cast<std::size_t>(n));
}

std::string configDirectory() { return xdgDirectory("XDG_CONFIG_HOME", ".config") + "/quillmark"; }

std::string logFilePath() {
  return xdgDirectory("XDG_STATE_HOME", ".local/state") + "/quillmark/Quillmark.log";
}

}  // namespace quillmark
