#pragma once

#include <mutex>
#include <string>
#include <string_view>

namespace quillmark {

// The diagnostic log: time-stamped lines appended to one text file. Each line is written with a
// single append, so lines from the main thread and the sampling queue never tear (their order may
// interleave). Writing never fails visibly and never waits: a line that cannot be written, or whose
// path is not a regular file (a FIFO, a device), is lost, nothing else.
// Any thread may call it.
class LogFile {
 public:
  // verbose: whether verbose() lines are written (fixed for the file's lifetime).
  LogFile(std::string path, bool verbose);

  void debug(std::string_view message);

  // Builds and writes the message only when verbose logging is on, so a disabled verbose line
  // costs one branch.
  template <class MakeMessage>
  void verbose(MakeMessage&& makeMessage) {
    if (verbose_) debug(std::forward<MakeMessage>(makeMessage)());
  }

  [[nodiscard]] bool verboseEnabled() const { return verbose_; }
  [[nodiscard]] const std::string& path() const { return path_; }
  // The rotated generation: the same folder, "Quillmark.old.log" for "Quillmark.log".
  [[nodiscard]] static std::string oldLogPath(const std::string& path);
  // Above this size the log is rotated at the first line of a launch.
  static constexpr long long kRotateAboveBytes = 2 * 1024 * 1024;

 private:
  void rotateOnce();

  std::string path_;
  bool verbose_;
  std::once_flag rotated_;
};

// The process-wide log at the platform's location, "verboseLog" read once per launch.
namespace Log {

LogFile& shared();

inline void debug(std::string_view message) { shared().debug(message); }

template <class MakeMessage>
void verbose(MakeMessage&& makeMessage) {
  shared().verbose(std::forward<MakeMessage>(makeMessage));
}

}  // namespace Log
}  // namespace quillmark
