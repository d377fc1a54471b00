#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sampling/process_scan.h"

namespace quillmark {

// The Linux process table: every numeric entry of /proc, with comm and CPU time from
// /proc/<pid>/stat and resident pages from /proc/<pid>/statm (exact, as ps shows it).
//
// Each live process's two files are kept open between scans and re-read in place: that costs less
// than half of an open/read/close. A kept descriptor belongs to one process for good; once that
// process is reaped a read fails with ESRCH, so a pid taken over by a new process is never read
// through its predecessor's files. The files of at most keepOpenLimit processes are kept; past it
// (or when the program runs out of descriptors) the remaining pids are read with open/read/close.
//
// `root` holds proc/ ("/" in production, a fake tree in tests). Used on the monitor's queue only.
class LinuxProcessReader final : public ProcessReader {
 public:
  // Without a limit, the soft RLIMIT_NOFILE is raised to the hard one (once per program) and a
  // share of it is left for the rest of the program.
  explicit LinuxProcessReader(std::string root = "/",
                              std::optional<std::size_t> keepOpenLimit = std::nullopt);
  ~LinuxProcessReader() override;
  LinuxProcessReader(const LinuxProcessReader&) = delete;
  LinuxProcessReader& operator=(const LinuxProcessReader&) = delete;

  [[nodiscard]] std::vector<RawProcess> readProcessesRaw(NameCache& names) override;
  void retainOnly(const PidSet& live) override;

  [[nodiscard]] std::size_t keptOpenCount() const { return kept_.size(); }
  [[nodiscard]] bool keepsOpen(std::int32_t pid) const { return kept_.count(pid) != 0; }
  [[nodiscard]] std::size_t keepOpenLimit() const { return keepOpenLimit_; }

 private:
  struct Files {
    int stat = -1;
    int statm = -1;
  };
  struct Read {
    std::string_view stat;
    std::string_view statm;
    bool newProcess = false;  // the pid's kept files failed: another process now has this pid
  };
  std::optional<Read> readFiles(std::int32_t pid);
  bool readBoth(const Files& files, Read& read);
  int openFile(std::int32_t pid, const char* name);
  void shrinkKeptTo(std::size_t count);
  bool listPids(std::vector<std::int32_t>& pids);

  std::string procPath_;
  int procFd_ = -1;
  std::size_t keepOpenLimit_ = 0;
  std::unordered_map<std::int32_t, Files> kept_;
  std::uint64_t nsPerTick_ = 0;  // exact when the tick rate divides 1e9
  std::uint64_t ticksPerSecond_ = 100;
  std::uint64_t pageSize_ = 4096;
  std::vector<char> dirBuffer_;
  std::vector<char> statBuffer_;
  std::vector<char> statmBuffer_;
  std::vector<std::int32_t> pids_;
};

}  // namespace quillmark
