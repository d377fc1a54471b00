#include "sensors/linux/sysfs_attribute.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace quillmark {

SysfsAttribute::SysfsAttribute(std::string path) : path_(std::move(path)) {}

SysfsAttribute::~SysfsAttribute() { close(); }

SysfsAttribute::SysfsAttribute(SysfsAttribute&& other) noexcept
    : path_(std::move(other.path_)), fd_(std::exchange(other.fd_, -1)), buffer_(other.buffer_) {}

SysfsAttribute& SysfsAttribute::operator=(SysfsAttribute&& other) noexcept {
  if (this != &other) {
    close();
    path_ = std::move(other.path_);
    fd_ = std::exchange(other.fd_, -1);
    buffer_ = other.buffer_;
  }
  return *this;
}

void SysfsAttribute::close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

long SysfsAttribute::readOnce() {
  for (;;) {
    const ssize_t n = ::pread(fd_, buffer_.data(), buffer_.size(), 0);
    if (n < 0 && errno == EINTR) continue;
    return n;
  }
}

std::optional<std::string_view> SysfsAttribute::read() {
  const bool wasOpen = fd_ >= 0;
  if (!wasOpen) fd_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd_ < 0) return std::nullopt;
  long n = readOnce();
  if (n < 0 && wasOpen) {
    close();
    fd_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd_ < 0) return std::nullopt;
    n = readOnce();
  }
  // A full buffer means the value was longer than any attribute these readers take.
  if (n < 0 || static_cast<std::size_t>(n) > kMaxLength) return std::nullopt;
  return std::string_view(buffer_.data(), static_cast<std::size_t>(n));
}

}  // namespace quillmark
