#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace quillmark {

// Writes whole lines to a non-blocking descriptor (stdout) for a reader that may fall behind or
// stop reading altogether, without ever making the caller wait. A line is never cut or interleaved:
// once its first byte is out, the rest goes before anything else. Lines written with keep (a
// protocol header) are all delivered, in order. Of the others only the newest waits while the
// reader is behind, since a status bar wants the current value rather than a backlog; the lines
// replaced meanwhile are counted and logged once per stall.
//
// The owner connects wantWritable to its loop (watch the descriptor for room while it is true) and
// calls onWritable when there is room. Main thread only.
class LineWriter {
 public:
  explicit LineWriter(int fd) : fd_(fd) {}
  ~LineWriter();
  LineWriter(const LineWriter&) = delete;
  LineWriter& operator=(const LineWriter&) = delete;

  // Appends '\n' and sends as much as the descriptor takes now.
  void write(std::string line, bool keep = false);
  void onWritable();

  // True when every line handed over has been written in full (or writing failed).
  [[nodiscard]] bool idle() const { return failed_ || (written_ == started_.size() && !newest_); }
  [[nodiscard]] bool failed() const { return failed_; }
  [[nodiscard]] std::uint64_t droppedLines() const { return dropped_; }

  // Logs the lines dropped since the last report, if any (also done when a stall ends and when
  // the writer goes).
  void reportDrops();

  // Told true when the writer starts waiting for room and false when it stops.
  std::function<void(bool)> wantWritable;
  // Called once when the descriptor refuses a write for good (the reader closed the pipe).
  std::function<void()> onFailure;
  // Called whenever the writer becomes idle after waiting.
  std::function<void()> onIdle;

 private:
  enum class Sent { all, blocked, failed };
  Sent send(const std::string& bytes, std::size_t& offset);
  void flush();

  int fd_;
  std::string started_;                // lines that must go out whole: begun, or kept
  std::size_t written_ = 0;            // bytes of started_ already written
  std::optional<std::string> newest_;  // the newest droppable line, not begun
  bool waiting_ = false;
  bool failed_ = false;
  std::uint64_t dropped_ = 0;
  std::uint64_t unreportedDrops_ = 0;
};

// A descriptor that writes to fd without blocking while leaving fd's own open file description
// alone where it can: a terminal or pipe shared with the shell must not turn non-blocking for the
// shell as well. A pipe, FIFO or terminal is reopened through /proc; a regular file or device is
// written as it is (its writes do not wait on a reader); anything else (a socket) gets O_NONBLOCK
// on fd itself, put back when this object goes. Main thread only.
class NonBlockingOutput {
 public:
  explicit NonBlockingOutput(int fd);
  ~NonBlockingOutput();
  NonBlockingOutput(const NonBlockingOutput&) = delete;
  NonBlockingOutput& operator=(const NonBlockingOutput&) = delete;

  [[nodiscard]] int fd() const { return fd_; }

 private:
  int fd_;
  bool owned_ = false;
  std::optional<int> restoreFlags_;
};

}  // namespace quillmark
