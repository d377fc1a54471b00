#pragma once

#include <string>

namespace quillmark {

// Where the program keeps its files on this platform. Read from the environment at each call, so
// tests can point them at temporary folders.

// The user's home folder ($HOME, else the password database).
[[nodiscard]] std::string homeDirectory();
// The diagnostic log file: ~/Library/Logs/Quillmark.log on macOS,
// $XDG_STATE_HOME/quillmark/Quillmark.log on Linux.
[[nodiscard]] std::string logFilePath();
// The running program's own file (absent when the system will not say), e.g. for resources
// installed beside it or an autostart entry that must start this very binary.
[[nodiscard]] std::string executablePath();
// The folder for the program's own files: $XDG_CONFIG_HOME/quillmark on Linux (the settings
// file), ~/Library/Application Support/Quillmark on macOS (settings live in the defaults domain).
[[nodiscard]] std::string configDirectory();

}  // namespace quillmark
