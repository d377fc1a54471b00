#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

// Small POSIX file helpers. None throws; failures are reported by the return value.

// The whole file, or absent when it cannot be opened or read.
[[nodiscard]] std::optional<std::string> readWholeFile(const std::string& path);

// Replaces path with data so that a crash at any moment leaves either the old or the new content:
// write a temporary file in the same folder, flush it to disk, rename it over path.
[[nodiscard]] bool writeFileAtomically(const std::string& path, std::string_view data, int mode = 0600);

// Creates the folder and its missing parents (new ones with mode 0700). True when it exists after.
[[nodiscard]] bool makeDirectories(const std::string& path);

// The folder part of a path ("/a/b/c" -> "/a/b").
[[nodiscard]] std::string parentDirectory(const std::string& path);

}  // namespace quillmark
