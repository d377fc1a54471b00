#include <unistd.h>

#include <array>

#include "base/file_util.h"
#include "processes/process_detail_reader.h"
#include "sampling/linux/proc_parsers.h"

namespace quillmark::ProcessDetailReader {
namespace {

struct Constants {
  std::uint64_t ticksPerSecond = 100;
  std::uint64_t pageSize = 4096;
  std::optional<std::int64_t> bootTime;  // Unix seconds (btime of /proc/stat)
};

const Constants& constants() {
  static const Constants value = [] {
    Constants c;
    if (const long hz = ::sysconf(_SC_CLK_TCK); hz > 0) c.ticksPerSecond = static_cast<std::uint64_t>(hz);
    if (const long page = ::sysconf(_SC_PAGESIZE); page > 0) c.pageSize = static_cast<std::uint64_t>(page);
    if (const auto stat = readWholeFile("/proc/stat")) c.bootTime = procfs::parseProcStat(*stat).bootTime;
    return c;
  }();
  return value;
}

}  // namespace

std::optional<ProcessDetail> read(std::int32_t pid, std::string_view fallbackName) {
  if (pid < 1) return std::nullopt;
  const std::string dir = "/proc/" + std::to_string(pid) + "/";
  const auto statText = readWholeFile(dir + "stat");
  if (!statText) return std::nullopt;
  const auto stat = procfs::parsePidStat(*statText);
  if (!stat) return std::nullopt;
  const Constants& c = constants();

  ProcessDetail detail;
  detail.pid = pid;
  detail.name = std::string(fallbackName);
  std::array<char, 4096> path{};
  const ssize_t length = ::readlink((dir + "exe").c_str(), path.data(), path.size());
  detail.path = length > 0 && static_cast<std::size_t>(length) < path.size()
                    ? std::string(path.data(), static_cast<std::size_t>(length))
                    : std::string(kNoPath);
  if (const auto statm = readWholeFile(dir + "statm"))
    detail.residentBytes = procfs::parseStatmResident(*statm).value_or(0) * c.pageSize;
  detail.virtualBytes = stat->vsizeBytes;
  const std::uint64_t nsPerTick = 1'000'000'000 / c.ticksPerSecond;
  detail.cpuUserTime = stat->utimeTicks * nsPerTick;
  detail.cpuSystemTime = stat->stimeTicks * nsPerTick;
  detail.threadCount = static_cast<std::int32_t>(stat->threads);
  if (c.bootTime)
    detail.startDate = static_cast<double>(*c.bootTime) +
                       static_cast<double>(stat->startTicks) / static_cast<double>(c.ticksPerSecond);
  detail.parentPid = stat->ppid;
  return detail;
}

}  // namespace quillmark::ProcessDetailReader
