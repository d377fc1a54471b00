#include <libproc.h>
#include <unistd.h>

#include "base/paths.h"

namespace quillmark {

// Where Console.app and support staff look for an application's log.
std::string logFilePath() { return homeDirectory() + "/Library/Logs/Quillmark.log"; }

std::string executablePath() {
  char buffer[PROC_PIDPATHINFO_MAXSIZE];
  const int length = proc_pidpath(getpid(), buffer, sizeof buffer);
  if (length <= 0) return {};
  return std::string(buffer, static_cast<std::size_t>(length));
}

// The defaults domain holds the settings on macOS; this folder is for any file the program must
// keep beside them (the macOS convention for per-user application data).
std::string configDirectory() { return homeDirectory() + "/Library/Application Support/Quillmark"; }

}  // namespace quillmark
