#include "base/file_util.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <random>

namespace quillmark {

std::optional<std::string> readWholeFile(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  std::string out;
  char buffer[16384];
  for (;;) {
    const ssize_t n = read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      close(fd);
      return std::nullopt;
    }
    if (n == 0) break;
    out.append(buffer, static_cast<std::size_t>(n));
  }
  close(fd);
  return out;
}

std::string parentDirectory(const std::string& path) {
  const auto slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

bool makeDirectories(const std::string& path) {
  if (path.empty()) return false;
  struct stat info {};
  if (stat(path.c_str(), &info) == 0) return S_ISDIR(info.st_mode);
  const std::string parent = parentDirectory(path);
  if (parent != path && !makeDirectories(parent)) return false;
  return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST;
}

bool writeFileAtomically(const std::string& path, std::string_view data, int mode) {
  const std::string dir = parentDirectory(path);
  if (!makeDirectories(dir)) return false;
  // A unique temporary name so two writers never share one file; same folder so rename is atomic.
  std::random_device random;
  const std::string temp = path + ".tmp-" + std::to_string(getpid()) + "-" + std::to_string(random());
  const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  if (fd < 0) return false;
  bool ok = true;
  std::size_t done = 0;
  while (ok && done < data.size()) {
    const ssize_t n = write(fd, data.data() + done, data.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0)
      ok = false;
    else
      done += static_cast<std::size_t>(n);
  }
  ok = ok && fsync(fd) == 0;
  ok = (close(fd) == 0) && ok;
  if (ok) ok = std::rename(temp.c_str(), path.c_str()) == 0;
  if (!ok) {
    unlink(temp.c_str());
    return false;
  }
  // Make the rename itself durable.
  const int dirFd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dirFd >= 0) {
    (void)fsync(dirFd);
    close(dirFd);
  }
  return true;
}

}  // namespace quillmark
