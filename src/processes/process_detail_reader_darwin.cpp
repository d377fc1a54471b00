#include <libproc.h>
#include <mach/mach_time.h>
#include <sys/proc_info.h>

#include <algorithm>
#include <array>

#include "processes/process_detail_reader.h"

namespace quillmark::ProcessDetailReader {
namespace {

// Task times are Mach absolute time units: nanoseconds on Intel, 125/3 ns per unit on Apple
// silicon. Read once; a failed read keeps 1/1.
const mach_timebase_info_data_t& timebase() {
  static const mach_timebase_info_data_t value = [] {
    mach_timebase_info_data_t info{1, 1};
    if (mach_timebase_info(&info) != KERN_SUCCESS || info.denom == 0) info = {1, 1};
    return info;
  }();
  return value;
}

std::uint64_t toNanoseconds(std::uint64_t ticks) {
  const auto& base = timebase();
  // Divided first, so that a long-lived process's ticks times 125 cannot overflow.
  return ticks / base.denom * base.numer + ticks % base.denom * base.numer / base.denom;
}

}  // namespace

std::optional<ProcessDetail> read(std::int32_t pid, std::string_view fallbackName) {
  if (pid < 1) return std::nullopt;
  proc_taskallinfo all{};
  if (proc_pidinfo(pid, PROC_PIDTASKALLINFO, 0, &all, sizeof all) != static_cast<int>(sizeof all))
    return std::nullopt;
  ProcessDetail detail;
  detail.pid = pid;
  detail.name = std::string(fallbackName);
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path{};
  const int length = proc_pidpath(pid, path.data(), static_cast<std::uint32_t>(path.size()));
  detail.path = length > 0 ? std::string(path.data(),
                                         std::min<std::size_t>(static_cast<std::size_t>(length), path.size()))
                           : std::string(kNoPath);
  detail.residentBytes = all.ptinfo.pti_resident_size;
  detail.virtualBytes = all.ptinfo.pti_virtual_size;
  detail.cpuUserTime = toNanoseconds(all.ptinfo.pti_total_user);
  detail.cpuSystemTime = toNanoseconds(all.ptinfo.pti_total_system);
  detail.threadCount = all.ptinfo.pti_threadnum;
  detail.startDate = static_cast<double>(all.pbsd.pbi_start_tvsec) +
                     static_cast<double>(all.pbsd.pbi_start_tvusec) / 1'000'000.0;
  detail.parentPid = static_cast<std::int32_t>(all.pbsd.pbi_ppid);
  return detail;
}

}  // namespace quillmark::ProcessDetailReader
