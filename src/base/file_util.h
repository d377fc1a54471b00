#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

// Small POSIX file helpers. None throws; failures are reported by the return value.

// The whole file, or absent when it cannot be opened or read.
[[nodiscard]] std::optional<std::string> readWholeFile(const std::string& path);

// Why readRegularFile gave no content.
enum class FileReadError { notFound, notRegular, tooLarge, unreadable };

// Which file a path named when it was opened: a file replaced by rename gets another identity.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  bool operator==(const FileIdentity&) const = default;
};

// What readRegularFile found: the content, or why there is none.
struct RegularFileRead {
  std::optional<std::string> content;
  FileReadError error = FileReadError::notFound;  // meaningful only when content is absent
  std::optional<FileIdentity> identity;           // of the file opened, when one was
};

// Reads a file that people may have replaced by something else: a symbolic link is followed,
// but only a regular file of at most maxBytes is read. Opening never blocks (a FIFO with no
// writer, a device), and a file larger than maxBytes is not read past maxBytes + 1.
[[nodiscard]] RegularFileRead readRegularFile(const std::string& path, std::size_t maxBytes);
// A short English phrase for the log ("not a regular file").
[[nodiscard]] std::string_view describe(FileReadError error);

// Moves path aside to base, or base-2, base-3, ... whichever does not exist yet: an earlier copy is
// never replaced, even by a concurrent caller. The name used, or absent when none could be made.
// With `only`, the file is moved only while path still names that file: one that another process
// has renamed into place since it was read stays where it is (absent, errno ESTALE).
[[nodiscard]] std::optional<std::string> moveAsideWithoutReplacing(const std::string& path,
                                                                   const std::string& base,
                                                                   std::optional<FileIdentity> only = {});

// Replaces path with data so that a crash at any moment leaves either the old or the new content:
// write a temporary file in the same folder, flush it to disk, rename it over path. When path is a
// symbolic link the file it points to is replaced and the link is kept. Anything at path that is
// not a regular file (a FIFO, a device, a folder) is left alone and false returned.
[[nodiscard]] bool writeFileAtomically(const std::string& path, std::string_view data, int mode = 0600);

// Creates the folder and its missing parents (new ones with mode 0700). True when it exists after.
[[nodiscard]] bool makeDirectories(const std::string& path);

// The folder part of a path ("/a/b/c" -> "/a/b").
[[nodiscard]] std::string parentDirectory(const std::string& path);

}  // namespace quillmark
