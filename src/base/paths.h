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
// Linux only: the folder of the settings file, $XDG_CONFIG_HOME/quillmark.
[[nodiscard]] std::string configDirectory();

}  // namespace quillmark
