#include <libproc.h>
#include <signal.h>
#include <sys/proc_info.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "processes/process_os_posix.h"

namespace quillmark {
namespace {

// proc_pidinfo answers with the bytes copied; anything short of the whole record is a failure.
bool readBsdInfo(std::int32_t pid, proc_bsdinfo& info) {
  if (pid < 1) return false;
  return proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) == static_cast<int>(sizeof info);
}

// pbi_start_tvsec: whole seconds since 1970, fixed for the process's life.
class DarwinStartTimeSource final : public StartTimeSource {
 public:
  std::optional<std::uint64_t> startTime(std::int32_t pid) override {
    proc_bsdinfo info{};
    if (!readBsdInfo(pid, info)) return std::nullopt;
    return info.pbi_start_tvsec;
  }
};

class DarwinProcessSignals final : public PosixProcessSignals {
 public:
  std::optional<std::string> shortName(std::int32_t pid) override {
    std::array<char, 64> buffer{};
    const int length = proc_name(pid, buffer.data(), static_cast<std::uint32_t>(buffer.size()));
    if (length <= 0) return std::nullopt;
    return std::string(buffer.data(), std::min<std::size_t>(static_cast<std::size_t>(length), buffer.size()));
  }
  std::optional<bool> isStopped(std::int32_t pid) override {
    proc_bsdinfo info{};
    if (!readBsdInfo(pid, info)) return std::nullopt;
    return info.pbi_status == SSTOP;
  }
  // macOS has no process descriptors to signal through: the pid, guarded by the caller's stamps.
  std::unique_ptr<ProcessHandle> open(std::int32_t pid) override {
    if (pid < 2 || ::kill(pid, 0) != 0) return nullptr;
    return std::make_unique<PidHandle>(pid);
  }
};

// macOS has no cgroups: every pause stops the process group.
class NoFreezer final : public CgroupFreezer {
 public:
  std::optional<std::string> freezableUnit(std::int32_t) override { return std::nullopt; }
  int setFrozen(const std::string&, bool) override { return ENOTSUP; }
  std::optional<bool> isFrozen(const std::string&) override { return std::nullopt; }
};

}  // namespace

StartTimeSource& StartTimeSource::platform() {
  static DarwinStartTimeSource source;
  return source;
}

ProcessSignals& ProcessSignals::platform() {
  static DarwinProcessSignals signals;
  return signals;
}

CgroupFreezer& CgroupFreezer::platform() {
  static NoFreezer freezer;
  return freezer;
}

}  // namespace quillmark
