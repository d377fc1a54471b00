#include "app/frontend/line_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "base/log.h"

namespace quillmark {

LineWriter::~LineWriter() { reportDrops(); }

void LineWriter::write(std::string line, bool keep) {
  if (failed_) return;
  line += '\n';
  if (keep) {
    if (newest_) started_ += *std::exchange(newest_, std::nullopt);
    started_ += line;
  } else {
    if (newest_) {
      ++dropped_;
      ++unreportedDrops_;
    }
    newest_ = std::move(line);
  }
  flush();
}

void LineWriter::onWritable() { flush(); }

LineWriter::Sent LineWriter::send(const std::string& bytes, std::size_t& offset) {
  while (offset < bytes.size()) {
    const ssize_t n = ::write(fd_, bytes.data() + offset, bytes.size() - offset);
    if (n > 0) {
      offset += static_cast<std::size_t>(n);
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      return Sent::blocked;
    } else {
      return Sent::failed;
    }
  }
  return Sent::all;
}

void LineWriter::flush() {
  Sent sent = Sent::all;
  while (!failed_) {
    if (written_ < started_.size()) {
      sent = send(started_, written_);
      if (sent != Sent::all) break;
    }
    started_.clear();
    written_ = 0;
    if (!newest_) break;
    // The newest line is still replaceable until its first byte is out.
    std::size_t offset = 0;
    sent = send(*newest_, offset);
    if (offset == 0 && sent == Sent::blocked) break;
    started_ = std::move(*newest_);
    newest_.reset();
    written_ = offset;
    if (sent != Sent::all) break;
  }
  if (sent == Sent::failed && !failed_) {
    failed_ = true;
    started_.clear();
    newest_.reset();
    reportDrops();
    if (waiting_ && wantWritable) wantWritable(false);
    waiting_ = false;
    if (onFailure) onFailure();
    return;
  }
  const bool wait = !idle();
  if (wait != waiting_) {
    waiting_ = wait;
    if (wantWritable) wantWritable(wait);
    if (!wait) {
      reportDrops();
      if (onIdle) onIdle();
    }
  }
}

void LineWriter::reportDrops() {
  if (unreportedDrops_ == 0) return;
  Log::debug("Output: the reader fell behind; " + std::to_string(unreportedDrops_) +
             " lines were dropped and only the newest was kept");
  unreportedDrops_ = 0;
}

NonBlockingOutput::NonBlockingOutput(int fd) : fd_(fd) {
  struct stat info {};
  if (fstat(fd, &info) != 0 || S_ISREG(info.st_mode) || S_ISBLK(info.st_mode)) return;
  if (S_ISFIFO(info.st_mode) || S_ISCHR(info.st_mode)) {
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    const int reopened = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (reopened >= 0) {
      fd_ = reopened;
      owned_ = true;
      return;
    }
  }
  const int flags = fcntl(fd, F_GETFL);
  if (flags >= 0 && !(flags & O_NONBLOCK) && fcntl(fd, F_SETFL, flags | O_NONBLOCK) == 0) {
    restoreFlags_ = flags;
  }
}

NonBlockingOutput::~NonBlockingOutput() {
  if (owned_) close(fd_);
  if (restoreFlags_) (void)fcntl(fd_, F_SETFL, *restoreFlags_);
}

}  // namespace quillmark
