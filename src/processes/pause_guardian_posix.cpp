#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "base/file_util.h"
#include "base/log.h"
#include "base/paths.h"
#include "processes/pause_guardian.h"

extern char** environ;

namespace quillmark {
namespace {

// A write to a guardian that died must fail, not raise SIGPIPE: Linux asks per send, macOS per
// socket.
#ifdef MSG_NOSIGNAL
constexpr int kSendFlags = MSG_NOSIGNAL;
#else
constexpr int kSendFlags = 0;
#endif

void prepareSocket(int fd) {
  ::fcntl(fd, F_SETFD, FD_CLOEXEC);
#ifdef SO_NOSIGPIPE
  int on = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
}

}  // namespace

PauseGuardian::PauseGuardian(std::string guardianPath) : path_(std::move(guardianPath)) {}

PauseGuardian::~PauseGuardian() {
  if (socket_ >= 0) ::close(socket_);
  // Reaped now only if it has already finished; a guardian still resuming is left to init.
  if (pid_ > 0) ::waitpid(pid_, nullptr, WNOHANG);
}

std::string PauseGuardian::findExecutable() {
  const std::string self = executablePath();
  if (self.empty()) return {};
  const std::string dir = parentDirectory(self);
  for (const std::string& candidate :
       {dir + "/quillmark-guardian", parentDirectory(dir) + "/libexec/quillmark/quillmark-guardian"})
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  return {};
}

void PauseGuardian::update(const std::vector<PausedGroup>& groups) {
  if (groups.empty()) {
    stop();
    return;
  }
  const std::string line = PausedGroupCodec::encode(groups) + "\n";
  // A guardian that died meanwhile is replaced once.
  if ((running() || start()) && send(line)) {
    warned_ = false;
    return;
  }
  stop();
  if (start() && send(line)) {
    warned_ = false;
    return;
  }
  // Once per outage, not at every change of the list.
  if (!warned_) Log::debug("Pause guardian unavailable; paused apps stay frozen if Quillmark crashes");
  warned_ = true;
}

bool PauseGuardian::start() {
  if (path_.empty()) return false;
  int ends[2];
  // Close-on-exec at once would be tidier, but macOS has no SOCK_CLOEXEC; nothing else of ours
  // spawns between these two lines on the main thread.
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return false;
  prepareSocket(ends[0]);
  prepareSocket(ends[1]);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  // Our output may be a status bar's pipe: the guardian must neither write to it nor keep it open.
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  char* argv[] = {path_.data(), nullptr};
  pid_t pid = -1;
  const int error = ::posix_spawn(&pid, path_.c_str(), &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  if (error != 0) {
    ::close(ends[0]);
    Log::debug("Pause guardian failed to start errno=" + std::to_string(error) + ": " + path_);
    return false;
  }
  pid_ = pid;
  socket_ = ends[0];
  return true;
}

void PauseGuardian::stop() {
  if (socket_ >= 0) {
    // An empty list tells the guardian that nothing is left to watch before the socket closes.
    (void)send("[]\n");
    ::close(socket_);
    socket_ = -1;
  }
  if (pid_ > 0) {
    while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
  }
}

bool PauseGuardian::send(const std::string& line) {
  std::size_t done = 0;
  while (done < line.size()) {
    const ssize_t n = ::send(socket_, line.data() + done, line.size() - done, kSendFlags);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

}  // namespace quillmark
