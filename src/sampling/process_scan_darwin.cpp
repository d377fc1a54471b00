#include <libproc.h>
#include <sys/proc_info.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "base/check.h"
#include "sampling/process_scan.h"

namespace quillmark {
namespace {

// The process table through libproc. Only processes of the same user (all of them when root)
// answer the task-information call; the others are silently left out.
class DarwinProcessReader final : public ProcessReader {
 public:
  std::vector<RawProcess> readProcessesRaw(NameCache& names) override {
    // proc_listpids answers in bytes. The first call (no buffer) sizes the list; a process started
    // between the two calls waits for the next scan.
    const int needed = proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0);
    if (needed < 1) return {};
    std::vector<int> pids(std::max<std::size_t>(static_cast<std::size_t>(needed) / sizeof(int), 64), 0);
    const int filled =
        proc_listpids(PROC_ALL_PIDS, 0, pids.data(), static_cast<int>(pids.size() * sizeof(int)));
    if (filled < 1) return {};
    pids.resize(std::min(pids.size(), static_cast<std::size_t>(filled) / sizeof(int)));

    std::array<char, 512> nameBuffer{};  // reused for every name read in this scan
    std::vector<RawProcess> processes;
    processes.reserve(pids.size());
    for (const int pid : pids) {
      if (pid < 1) continue;  // the kernel task and empty slots
      // The BSD half carries the start time, so one call gives what telling a reused pid apart
      // needs. Anything but the whole record means the process ended or may not be inspected.
      proc_taskallinfo all{};
      if (proc_pidinfo(pid, PROC_PIDTASKALLINFO, 0, &all, sizeof all) != static_cast<int>(sizeof all))
        continue;
      const proc_taskinfo& task = all.ptinfo;
      RawProcess process;
      process.pid = pid;
      // Whole seconds, the stamp StartTimeSource gives on macOS too.
      process.startTime = all.pbsd.pbi_start_tvsec;
      process.name = nameOf(pid, process.startTime, names, nameBuffer);
      // Kept in the task record's own unit (Mach time) on purpose: the scan treats it as
      // nanoseconds, and that scale is what the percentages shown are defined by.
      process.cpuTime = checkedAdd<std::uint64_t>(task.pti_total_user, task.pti_total_system);
      process.mem = task.pti_resident_size;
      processes.push_back(std::move(process));
    }
    return processes;
  }

 private:
  static std::string nameOf(int pid, std::uint64_t startTime, NameCache& names,
                            std::array<char, 512>& buffer) {
    return cachedName(names, pid, startTime, [&] {
      const int length = proc_name(pid, buffer.data(), static_cast<std::uint32_t>(buffer.size()));
      // A failed read leaves no bytes, which processDisplayName turns into "unknown".
      std::string_view bytes(
          buffer.data(), std::min<std::size_t>(static_cast<std::size_t>(std::max(length, 0)), buffer.size()));
      bytes = bytes.substr(0, bytes.find('\0'));
      return processDisplayName(bytes);
    });
  }
};

}  // namespace

std::unique_ptr<ProcessReader> ProcessReader::makePlatform() {
  return std::make_unique<DarwinProcessReader>();
}

}  // namespace quillmark
