#include "base/log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "base/defaults_store.h"
#include "base/file_util.h"
#include "base/paths.h"

namespace quillmark {
namespace {

// "HH:mm:ss.SSS" in local time.
std::string timeOfDay() {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t seconds = system_clock::to_time_t(now);
  const auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                static_cast<int>(millis));
  return buffer;
}

}  // namespace

LogFile::LogFile(std::string path, bool verbose) : path_(std::move(path)), verbose_(verbose) {}

std::string LogFile::oldLogPath(const std::string& path) {
  const auto slash = path.find_last_of('/');
  const auto dot = path.find_last_of('.');
  const std::string stem =
      (dot != std::string::npos && (slash == std::string::npos || dot > slash)) ? path.substr(0, dot) : path;
  return stem + ".old.log";
}

void LogFile::rotateOnce() {
  std::call_once(rotated_, [this] {
    struct stat info {};
    if (stat(path_.c_str(), &info) != 0) return;
    if (info.st_size <= kRotateAboveBytes) return;
    const std::string old = oldLogPath(path_);
    (void)unlink(old.c_str());
    (void)std::rename(path_.c_str(), old.c_str());
  });
}

void LogFile::debug(std::string_view message) {
  rotateOnce();
  std::string line;
  line.reserve(message.size() + 20);
  line += '[';
  line += timeOfDay();
  line += "] ";
  line += message;
  line += '\n';
  // O_NONBLOCK: a FIFO at the log's path must not stop the program until someone reads it. Only a
  // regular file (a symbolic link to one is fine) takes lines; anything else loses them.
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
  int fd = open(path_.c_str(), kFlags, 0600);
  if (fd < 0 && errno == ENOENT && makeDirectories(parentDirectory(path_)))
    fd = open(path_.c_str(), kFlags, 0600);
  if (fd < 0) return;
  struct stat info {};
  if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    close(fd);
    return;
  }
  // One write per line: O_APPEND makes the kernel place it whole at the end of the file.
  (void)!write(fd, line.data(), line.size());
  close(fd);
}

namespace Log {

LogFile& shared() {
  static LogFile log(logFilePath(), DefaultsStore::shared().getBool("verboseLog").value_or(false));
  return log;
}

}  // namespace Log
}  // namespace quillmark
