#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

// One sysfs attribute (a sensor reading, a status word) opened once and re-read with a single
// pread at offset 0 on every call. Unlike a procfs file, an attribute is produced whole by one
// read, so there is no need to read on to the end: that would double the system calls of a tick
// that reads dozens of them. Values longer than the buffer are not trusted (absent). Owns its
// descriptor; one thread (the monitor's queue).
class SysfsAttribute {
 public:
  static constexpr std::size_t kMaxLength = 255;

  explicit SysfsAttribute(std::string path);
  ~SysfsAttribute();
  SysfsAttribute(SysfsAttribute&& other) noexcept;
  SysfsAttribute& operator=(SysfsAttribute&& other) noexcept;
  SysfsAttribute(const SysfsAttribute&) = delete;
  SysfsAttribute& operator=(const SysfsAttribute&) = delete;

  // The attribute's text, valid until the next read; absent when it cannot be opened or read
  // (a removed device, EIO, ENODATA). A descriptor that stopped working is reopened once.
  [[nodiscard]] std::optional<std::string_view> read();

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  long readOnce();
  void close();

  std::string path_;
  int fd_ = -1;
  std::array<char, kMaxLength + 1> buffer_{};
};

}  // namespace quillmark
