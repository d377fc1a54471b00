#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmark {

// A /proc or /sys file that is opened once and re-read from offset 0 to its end on every call. The
// kernel regenerates such files on each read at offset 0, and skipping open/close more than halves the
// cost of a tick. Owns its descriptor and a buffer reused across reads. Not thread-safe: one
// reader (the monitor's queue) uses it.
class KeptOpenFile {
 public:
  explicit KeptOpenFile(std::string path);
  ~KeptOpenFile();
  KeptOpenFile(KeptOpenFile&& other) noexcept;
  KeptOpenFile& operator=(KeptOpenFile&& other) noexcept;
  KeptOpenFile(const KeptOpenFile&) = delete;
  KeptOpenFile& operator=(const KeptOpenFile&) = delete;

  // The whole current content, valid until the next read; absent when the file cannot be opened
  // or read. A descriptor that stopped working (the sysfs node was removed and re-created) is
  // replaced once by a fresh open.
  [[nodiscard]] std::optional<std::string_view> read();

  [[nodiscard]] const std::string& path() const { return path_; }
  // The errno of the latest failed read (0 when none failed yet).
  [[nodiscard]] int lastError() const { return lastError_; }

 private:
  bool open();
  void close();
  long readOnce();

  std::string path_;
  int fd_ = -1;
  int lastError_ = 0;
  std::vector<char> buffer_;
};

}  // namespace quillmark
