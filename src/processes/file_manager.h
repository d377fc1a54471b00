#pragma once

#include <string>
#include <string_view>

namespace quillmark {

// Shows the file at `path` (absolute) selected in the desktop's file manager: the Finder on macOS;
// on Linux the file manager behind org.freedesktop.FileManager1.ShowItems on the session bus, or,
// when none answers, the containing folder opened with xdg-open. Returns at once: the asking and
// any fallback happen off the calling thread, and their failures are only logged. False for a path
// that is empty or relative (nothing is asked). Main thread.
bool revealInFileManager(const std::string& path);

// The file:// URI of an absolute path: every byte outside the unreserved set and "/" is
// percent-encoded (spaces, non-ASCII UTF-8), as file managers expect. Any thread.
[[nodiscard]] std::string fileUri(std::string_view absolutePath);

}  // namespace quillmark
