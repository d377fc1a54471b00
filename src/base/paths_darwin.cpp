#include "base/paths.h"

namespace quillmark {

// Where Console.app and support staff look for an application's log.
std::string logFilePath() { return homeDirectory() + "/Library/Logs/Quillmark.log"; }

// The defaults domain holds the settings on macOS; this folder is for any file the program must
// keep beside them (the macOS convention for per-user application data).
std::string configDirectory() { return homeDirectory() + "/Library/Application Support/Quillmark"; }

}  // namespace quillmark
