#include "base/file_util.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
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

RegularFileRead readRegularFile(const std::string& path, std::size_t maxBytes) {
  // O_NONBLOCK: opening a FIFO with no writer, or a device, would otherwise wait indefinitely.
  const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0)
    return {std::nullopt, errno == ENOENT ? FileReadError::notFound : FileReadError::unreadable, {}};
  RegularFileRead result;
  struct stat info {};
  if (fstat(fd, &info) != 0) {
    result.error = FileReadError::unreadable;
  } else if (!S_ISREG(info.st_mode)) {
    result.error = FileReadError::notRegular;
  } else {
    result.identity =
        FileIdentity{static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino)};
    std::string out;
    char buffer[16384];
    for (;;) {
      const std::size_t want = std::min(sizeof buffer, maxBytes + 1 - out.size());
      const ssize_t n = want == 0 ? 0 : read(fd, buffer, want);
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) {
        result.error = FileReadError::unreadable;
        break;
      }
      if (n == 0) {
        if (out.size() > maxBytes)
          result.error = FileReadError::tooLarge;
        else
          result.content = std::move(out);
        break;
      }
      out.append(buffer, static_cast<std::size_t>(n));
    }
  }
  close(fd);
  return result;
}

std::string_view describe(FileReadError error) {
  switch (error) {
    case FileReadError::notFound:
      return "not found";
    case FileReadError::notRegular:
      return "not a regular file";
    case FileReadError::tooLarge:
      return "too large";
    case FileReadError::unreadable:
      return "unreadable";
  }
  return "unreadable";
}

std::optional<std::string> moveAsideWithoutReplacing(const std::string& path, const std::string& base,
                                                     std::optional<FileIdentity> only) {
  // link() fails on an existing name instead of replacing it, which rename() would do silently.
  for (int attempt = 1; attempt <= 1000; ++attempt) {
    const std::string candidate = attempt == 1 ? base : base + "-" + std::to_string(attempt);
    if (link(path.c_str(), candidate.c_str()) == 0) {
      // The link names the very file path held at that moment: if it is not the one the caller
      // judged, a writer has replaced it since, and the newer file is left alone.
      struct stat linked {};
      if (only && (lstat(candidate.c_str(), &linked) != 0 ||
                   FileIdentity{static_cast<std::uint64_t>(linked.st_dev),
                                static_cast<std::uint64_t>(linked.st_ino)} != *only)) {
        (void)unlink(candidate.c_str());
        errno = ESTALE;
        return std::nullopt;
      }
      if (unlink(path.c_str()) != 0) {
        (void)unlink(candidate.c_str());
        return std::nullopt;
      }
      return candidate;
    }
    if (errno != EEXIST) return std::nullopt;
  }
  return std::nullopt;
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

bool writeFileAtomically(const std::string& linkOrPath, std::string_view data, int mode) {
  // Replacing a symbolic link by a file would quietly detach a dotfile kept elsewhere.
  std::string path = linkOrPath;
  struct stat linkInfo {};
  if (lstat(linkOrPath.c_str(), &linkInfo) == 0 && S_ISLNK(linkInfo.st_mode)) {
    char resolved[PATH_MAX];
    if (realpath(linkOrPath.c_str(), resolved) != nullptr) path = resolved;
  }
  // Never replace a device, FIFO or folder by a file (a link to /dev/zero, run as root).
  struct stat existing {};
  if (stat(path.c_str(), &existing) == 0 && !S_ISREG(existing.st_mode)) return false;
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
