#include "sampling/linux/kept_open_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace quillmark {
namespace {

// Large enough for every file read per tick on a small machine; grown if a file is bigger.
constexpr std::size_t kInitialBuffer = 4 * 1024;
// No file these readers take is anywhere near this; past it the content is not trusted.
constexpr std::size_t kMaxBuffer = 4 * 1024 * 1024;

}  // namespace

KeptOpenFile::KeptOpenFile(std::string path) : path_(std::move(path)) {}

KeptOpenFile::~KeptOpenFile() { close(); }

KeptOpenFile::KeptOpenFile(KeptOpenFile&& other) noexcept
    : path_(std::move(other.path_)), fd_(std::exchange(other.fd_, -1)), buffer_(std::move(other.buffer_)) {}

KeptOpenFile& KeptOpenFile::operator=(KeptOpenFile&& other) noexcept {
  if (this != &other) {
    close();
    path_ = std::move(other.path_);
    fd_ = std::exchange(other.fd_, -1);
    buffer_ = std::move(other.buffer_);
  }
  return *this;
}

bool KeptOpenFile::open() {
  if (fd_ >= 0) return true;
  fd_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  return fd_ >= 0;
}

void KeptOpenFile::close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

// Bytes read, or -1. A procfs file hands out at most a page or so per read (/proc/net/dev with
// thirty-odd interfaces is longer), so a short read is not the end: reading continues at the
// offset reached until a read returns 0. Reading at offset 0 makes the kernel generate it afresh.
long KeptOpenFile::readOnce() {
  if (buffer_.empty()) buffer_.resize(kInitialBuffer);
  std::size_t used = 0;
  for (;;) {
    if (used == buffer_.size()) {
      if (buffer_.size() >= kMaxBuffer) return -1;
      buffer_.resize(buffer_.size() * 2);
    }
    const ssize_t n = ::pread(fd_, buffer_.data() + used, buffer_.size() - used, static_cast<off_t>(used));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return -1;
    if (n == 0) return static_cast<long>(used);
    used += static_cast<std::size_t>(n);
  }
}

std::optional<std::string_view> KeptOpenFile::read() {
  const bool wasOpen = fd_ >= 0;
  long n = open() ? readOnce() : -1;
  if (n < 0 && wasOpen) {
    close();
    n = open() ? readOnce() : -1;
  }
  if (n < 0) {
    lastError_ = errno;
    return std::nullopt;
  }
  return std::string_view(buffer_.data(), static_cast<std::size_t>(n));
}

}  // namespace quillmark
