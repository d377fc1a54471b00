#include "processes/process_os_posix.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace quillmark {

int PidHandle::signal(int signalNumber) { return ::kill(pid_, signalNumber) == 0 ? 0 : errno; }

std::int32_t PosixProcessSignals::processGroup(std::int32_t pid) { return pid < 1 ? -1 : ::getpgid(pid); }

std::int32_t PosixProcessSignals::ownPid() { return ::getpid(); }

int PosixProcessSignals::signalGroup(std::int32_t pgid, int signalNumber) {
  if (pgid < 2) return EINVAL;
  return ::kill(-pgid, signalNumber) == 0 ? 0 : errno;
}

}  // namespace quillmark
