#include "processes/process_os_linux.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "base/file_util.h"
#include "processes/cgroup_parsers.h"
#include "sampling/linux/proc_parsers.h"

namespace quillmark {
namespace {

std::string procFile(std::int32_t pid, const char* name) {
  return "/proc/" + std::to_string(pid) + "/" + name;
}

std::optional<procfs::PidStat> readStat(std::int32_t pid) {
  if (pid < 1) return std::nullopt;
  const auto text = readWholeFile(procFile(pid, "stat"));
  if (!text) return std::nullopt;
  auto stat = procfs::parsePidStat(*text);
  if (stat) stat->comm = {};  // it points into text, which ends here
  return stat;
}

// A pidfd: signals reach the process it was opened for, or fail with ESRCH once that process has
// been reaped, even if its pid has been handed to another process meanwhile.
class PidfdHandle final : public ProcessHandle {
 public:
  explicit PidfdHandle(int fd) : fd_(fd) {}
  ~PidfdHandle() override { ::close(fd_); }
  PidfdHandle(const PidfdHandle&) = delete;
  PidfdHandle& operator=(const PidfdHandle&) = delete;
  int signal(int signalNumber) override {
    return ::syscall(SYS_pidfd_send_signal, fd_, signalNumber, nullptr, 0) == 0 ? 0 : errno;
  }
  bool boundToProcess() const override { return true; }

 private:
  int fd_;
};

}  // namespace

std::optional<std::uint64_t> LinuxStartTimeSource::startTime(std::int32_t pid) {
  const auto stat = readStat(pid);
  if (!stat || stat->state == 'Z' || stat->state == 'X') return std::nullopt;
  return stat->startTicks;
}

std::string LinuxStartTimeSource::bootId() {
  static const std::string id = [] {
    std::string text = readWholeFile("/proc/sys/kernel/random/boot_id").value_or("");
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
  }();
  return id;
}

std::optional<std::string> LinuxProcessSignals::shortName(std::int32_t pid) {
  if (pid < 1) return std::nullopt;
  auto text = readWholeFile(procFile(pid, "comm"));
  if (!text) return std::nullopt;
  while (!text->empty() && text->back() == '\n') text->pop_back();
  return text;
}

std::optional<bool> LinuxProcessSignals::isStopped(std::int32_t pid) {
  const auto stat = readStat(pid);
  if (!stat) return std::nullopt;
  // Only T is a signal stop; t is a tracer's stop, which SIGCONT does not end.
  return stat->state == 'T';
}

bool LinuxProcessSignals::isTerminalForegroundJob(std::int32_t pid) {
  const auto stat = readStat(pid);
  return stat && stat->ttyNr != 0 && stat->tpgid == stat->pgrp;
}

std::unique_ptr<ProcessHandle> LinuxProcessSignals::open(std::int32_t pid) {
  if (pid < 2) return nullptr;
  const long fd = ::syscall(SYS_pidfd_open, pid, 0);
  if (fd >= 0) {
    ::fcntl(static_cast<int>(fd), F_SETFD, FD_CLOEXEC);
    return std::make_unique<PidfdHandle>(static_cast<int>(fd));
  }
  // Kernels before 5.3 have no pidfd_open: the bare pid, guarded by the caller's start stamps.
  if (errno == ENOSYS) return std::make_unique<PidHandle>(pid);
  return nullptr;
}

LinuxCgroupFreezer::LinuxCgroupFreezer(std::string root) {
  if (root.empty()) {
    if (const auto mountinfo = readWholeFile("/proc/self/mountinfo"))
      root_ = procfs::parseCgroup2Mount(*mountinfo);
  } else {
    root_ = std::move(root);
  }
}

std::optional<std::string> LinuxCgroupFreezer::freezableUnit(std::int32_t pid) {
  if (!root_ || pid < 2) return std::nullopt;
  const auto theirs = readWholeFile(procFile(pid, "cgroup"));
  const auto ours = readWholeFile("/proc/self/cgroup");
  if (!theirs || !ours) return std::nullopt;
  const auto path = procfs::parseUnifiedCgroup(*theirs);
  const auto own = procfs::parseUnifiedCgroup(*ours);
  if (!path || !own || !procfs::parseAppUnit(*path)) return std::nullopt;
  // Freezing a unit that holds us (or the guardian beside us) would leave nobody to thaw it.
  if (*own == *path || own->starts_with(*path + "/")) return std::nullopt;
  if (::access((*root_ + *path + "/cgroup.freeze").c_str(), W_OK) != 0) return std::nullopt;
  return path;
}

int LinuxCgroupFreezer::setFrozen(const std::string& cgroup, bool frozen) {
  if (!root_ || cgroup.size() < 2 || cgroup.front() != '/') return EINVAL;
  const int fd = ::open((*root_ + cgroup + "/cgroup.freeze").c_str(), O_WRONLY | O_CLOEXEC);
  if (fd < 0) return errno;
  const int error = ::write(fd, frozen ? "1" : "0", 1) == 1 ? 0 : errno;
  ::close(fd);
  return error;
}

std::optional<bool> LinuxCgroupFreezer::isFrozen(const std::string& cgroup) {
  if (!root_) return std::nullopt;
  const auto events = readWholeFile(*root_ + cgroup + "/cgroup.events");
  if (!events) return std::nullopt;
  if (procfs::parseFrozenEvent(*events).value_or(false)) return true;
  // Freezing completes asynchronously: right after our write cgroup.events may still say
  // "frozen 0". The freeze we asked for is still standing when cgroup.freeze says 1; only a thaw
  // by someone else (systemctl thaw) turns that back.
  const auto requested = readWholeFile(*root_ + cgroup + "/cgroup.freeze");
  if (!requested) return std::nullopt;
  return requested->starts_with("1");
}

StartTimeSource& StartTimeSource::platform() {
  static LinuxStartTimeSource source;
  return source;
}

ProcessSignals& ProcessSignals::platform() {
  static LinuxProcessSignals signals;
  return signals;
}

CgroupFreezer& CgroupFreezer::platform() {
  static LinuxCgroupFreezer freezer;
  return freezer;
}

}  // namespace quillmark
