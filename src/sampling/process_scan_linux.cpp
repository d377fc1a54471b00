#include "sampling/linux/process_scan_linux.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>
#include <utility>

#include "sampling/linux/proc_parsers.h"

namespace quillmark {
namespace {

// Each kept file pins a page of kernel memory for its buffer, so even with a huge descriptor
// limit we stop somewhere; machines with more processes than this read the rest the slow way.
constexpr std::size_t kMaxKeptOpen = 16384;
// /proc/<pid>/stat is at most about a kilobyte; the fields we need are near its start anyway.
// statm is seven numbers.
constexpr std::size_t kStatBuffer = 4096;
constexpr std::size_t kStatmBuffer = 256;
constexpr std::size_t kDirBuffer = 64 * 1024;

// The soft descriptor limit is raised to the hard one the first time it is needed, and three
// quarters of it (at least 256 left over) may hold process files, two per process.
std::size_t defaultKeepOpenLimit() {
  static const std::size_t limit = [] {
    rlimit current{};
    if (getrlimit(RLIMIT_NOFILE, &current) != 0) return std::size_t{0};
    if (current.rlim_cur < current.rlim_max) {
      rlimit raised = current;
      raised.rlim_cur = current.rlim_max;
      if (setrlimit(RLIMIT_NOFILE, &raised) == 0) current = raised;
    }
    const rlim_t soft = current.rlim_cur;
    const rlim_t reserve = std::max<rlim_t>(256, soft / 4);
    if (soft <= reserve) return std::size_t{0};
    return static_cast<std::size_t>(std::min<rlim_t>((soft - reserve) / 2, kMaxKeptOpen));
  }();
  return limit;
}

long preadWhole(int fd, std::vector<char>& buffer) {
  for (;;) {
    const ssize_t n = ::pread(fd, buffer.data(), buffer.size(), 0);
    if (n >= 0 || errno != EINTR) return n;
  }
}

std::optional<std::int32_t> pidFromName(const char* name) {
  std::int32_t pid = 0;
  const char* end = name + std::strlen(name);
  auto [stop, error] = std::from_chars(name, end, pid);
  if (error != std::errc() || stop != end || pid < 1) return std::nullopt;
  return pid;
}

}  // namespace

std::unique_ptr<ProcessReader> ProcessReader::makePlatform() {
  return std::make_unique<LinuxProcessReader>();
}

LinuxProcessReader::LinuxProcessReader(std::string root, std::optional<std::size_t> keepOpenLimit)
    : procPath_(std::move(root)),
      keepOpenLimit_(keepOpenLimit ? *keepOpenLimit : defaultKeepOpenLimit()),
      dirBuffer_(kDirBuffer),
      statBuffer_(kStatBuffer),
      statmBuffer_(kStatmBuffer) {
  if (procPath_.empty() || procPath_.back() != '/') procPath_.push_back('/');
  procPath_ += "proc";
  if (const long hz = sysconf(_SC_CLK_TCK); hz > 0) ticksPerSecond_ = static_cast<std::uint64_t>(hz);
  if (1'000'000'000 % ticksPerSecond_ == 0) nsPerTick_ = 1'000'000'000 / ticksPerSecond_;
  if (const long page = sysconf(_SC_PAGESIZE); page > 0) pageSize_ = static_cast<std::uint64_t>(page);
}

LinuxProcessReader::~LinuxProcessReader() {
  shrinkKeptTo(0);
  if (procFd_ >= 0) ::close(procFd_);
}

bool LinuxProcessReader::listPids(std::vector<std::int32_t>& pids) {
  pids.clear();
  if (procFd_ < 0) procFd_ = ::open(procPath_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (procFd_ < 0) return false;
  // The directory stays open across scans; rewinding it makes the kernel list the live tasks anew.
  if (::lseek(procFd_, 0, SEEK_SET) != 0) return false;
  for (;;) {
    const ssize_t n = ::getdents64(procFd_, dirBuffer_.data(), dirBuffer_.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) return true;
    for (ssize_t offset = 0; offset < n;) {
      const auto* entry = reinterpret_cast<const dirent64*>(dirBuffer_.data() + offset);
      if (entry->d_reclen == 0) return false;
      offset += entry->d_reclen;
      if (entry->d_name[0] < '1' || entry->d_name[0] > '9') continue;
      if (auto pid = pidFromName(entry->d_name)) pids.push_back(*pid);
    }
  }
}

void LinuxProcessReader::shrinkKeptTo(std::size_t count) {
  for (auto it = kept_.begin(); it != kept_.end() && kept_.size() > count;) {
    ::close(it->second.stat);
    ::close(it->second.statm);
    it = kept_.erase(it);
  }
}

int LinuxProcessReader::openFile(std::int32_t pid, const char* name) {
  char path[48];
  auto [end, error] = std::to_chars(path, path + 16, pid);
  if (error != std::errc()) return -1;
  *end++ = '/';
  std::memcpy(end, name, std::strlen(name) + 1);
  int fd = ::openat(procFd_, path, O_RDONLY | O_CLOEXEC);
  if (fd < 0 && (errno == EMFILE || errno == ENFILE) && !kept_.empty()) {
    // The rest of the program (or the system) needs descriptors more than we need speed: give
    // back an eighth of ours for good and read this process the slow way.
    keepOpenLimit_ = kept_.size() - std::max<std::size_t>(kept_.size() / 8, 1);
    shrinkKeptTo(keepOpenLimit_);
    fd = ::openat(procFd_, path, O_RDONLY | O_CLOEXEC);
  }
  return fd;
}

bool LinuxProcessReader::readBoth(const Files& files, Read& read) {
  const long statBytes = preadWhole(files.stat, statBuffer_);
  if (statBytes <= 0) return false;
  const long statmBytes = preadWhole(files.statm, statmBuffer_);
  if (statmBytes <= 0) return false;
  read.stat = std::string_view(statBuffer_.data(), static_cast<std::size_t>(statBytes));
  read.statm = std::string_view(statmBuffer_.data(), static_cast<std::size_t>(statmBytes));
  return true;
}

std::optional<LinuxProcessReader::Read> LinuxProcessReader::readFiles(std::int32_t pid) {
  Read read;
  if (auto it = kept_.find(pid); it != kept_.end()) {
    if (readBoth(it->second, read)) return read;
    // The process was reaped (ESRCH). If the pid is listed again, it is someone else's now.
    ::close(it->second.stat);
    ::close(it->second.statm);
    kept_.erase(it);
    read.newProcess = true;
  }
  Files files;
  files.stat = openFile(pid, "stat");
  if (files.stat < 0) return std::nullopt;  // gone since the listing
  files.statm = openFile(pid, "statm");
  const bool ok = files.statm >= 0 && readBoth(files, read);
  if (ok && kept_.size() < keepOpenLimit_) {
    kept_.emplace(pid, files);
  } else {
    ::close(files.stat);
    if (files.statm >= 0) ::close(files.statm);
  }
  if (!ok) return std::nullopt;
  return read;
}

std::vector<RawProcess> LinuxProcessReader::readProcessesRaw(NameCache& names) {
  std::vector<RawProcess> processes;
  if (!listPids(pids_)) return processes;
  processes.reserve(pids_.size());
  for (const std::int32_t pid : pids_) {
    const std::optional<Read> read = readFiles(pid);
    if (!read) continue;
    const std::optional<procfs::PidStat> stat = procfs::parsePidStat(read->stat);
    const std::optional<std::uint64_t> residentPages = procfs::parseStatmResident(read->statm);
    if (!stat || !residentPages) continue;

    RawProcess process;
    process.pid = pid;
    std::uint64_t ticks = 0;
    if (__builtin_add_overflow(stat->utimeTicks, stat->stimeTicks, &ticks)) continue;
    if (nsPerTick_ != 0) {
      if (__builtin_mul_overflow(ticks, nsPerTick_, &process.cpuTime)) continue;
    } else {
      const std::uint64_t whole = ticks / ticksPerSecond_;
      const std::uint64_t part = (ticks % ticksPerSecond_) * 1'000'000'000 / ticksPerSecond_;
      if (__builtin_mul_overflow(whole, std::uint64_t{1'000'000'000}, &process.cpuTime)) continue;
      if (__builtin_add_overflow(process.cpuTime, part, &process.cpuTime)) continue;
    }
    if (__builtin_mul_overflow(*residentPages, pageSize_, &process.mem)) continue;

    // A name is read once per process, not per pid: a reused pid gets its new owner's name. Kept
    // files tell at once; without them the start time does (it has clock-tick resolution).
    if (read->newProcess) names.erase(pid);
    process.startTime = stat->startTicks;
    process.name = cachedName(names, pid, stat->startTicks, [&] { return processDisplayName(stat->comm); });
    processes.push_back(std::move(process));
  }
  return processes;
}

void LinuxProcessReader::retainOnly(const PidSet& live) {
  std::erase_if(kept_, [&](const auto& entry) {
    if (live.count(entry.first)) return false;
    ::close(entry.second.stat);
    ::close(entry.second.statm);
    return true;
  });
}

}  // namespace quillmark
