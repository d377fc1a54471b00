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

// Bytes read, or -1. Reads the whole file in one call: a procfs file is generated whole at offset
// 0, so a read that fills the buffer is repeated with a bigger one rather than continued.
long KeptOpenFile::readOnce() {
  if (buffer_.empty()) buffer_.resize(kInitialBuffer);
  for (;;) {
    const ssize_t n = ::pread(fd_, buffer_.data(), buffer_.size(), 0);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return -1;
    if (static_cast<std::size_t>(n) < buffer_.size()) return n;
    if (buffer_.size() >= kMaxBuffer) return -1;
    buffer_.resize(buffer_.size() * 2);
  }
}

std::optional<std::string_view> KeptOpenFile::read() {
  const bool wasOpen = fd_ >= 0;
  if (!open()) return std::nullopt;
  long n = readOnce();
  if (n < 0 && wasOpen) {
    close();
    if (!open()) return std::nullopt;
    n = readOnce();
  }
  if (n < 0) return std::nullopt;
  return std::string_view(buffer_.data(), static_cast<std::size_t>(n));
}

}  // namespace quillmark
