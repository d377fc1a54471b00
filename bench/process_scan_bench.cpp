// The process scan and the cheap tick against floors that do the same I/O with nothing around it:
// every /proc/<pid>/stat and statm kept open and re-read, and the three per-tick files re-read.
// Our code should stay within a small factor of its floor; compare.sh prints the ratios.

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <string_view>
#include <vector>

#include "sampling/process_scan.h"
#include "sampling/system_counters.h"

namespace quillmark {
namespace {

double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Lists /proc on a kept directory descriptor and calls visit(pid name) for each numeric entry.
class ProcLister {
 public:
  ProcLister() : fd_(::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), buffer_(64 * 1024) {}
  ~ProcLister() { ::close(fd_); }
  ProcLister(const ProcLister&) = delete;
  ProcLister& operator=(const ProcLister&) = delete;

  template <class Visit>
  void forEach(Visit visit) {
    ::lseek(fd_, 0, SEEK_SET);
    for (;;) {
      const ssize_t n = ::getdents64(fd_, buffer_.data(), buffer_.size());
      if (n <= 0) return;
      for (ssize_t offset = 0; offset < n;) {
        const auto* entry = reinterpret_cast<const dirent64*>(buffer_.data() + offset);
        offset += entry->d_reclen;
        if (entry->d_name[0] >= '1' && entry->d_name[0] <= '9') visit(entry->d_name);
      }
    }
  }
  [[nodiscard]] int fd() const { return fd_; }

 private:
  int fd_;
  std::vector<char> buffer_;
};

int pidOf(const char* name) {
  int pid = 0;
  for (; *name; ++name) pid = pid * 10 + (*name - '0');
  return pid;
}

int openAt(int dir, const char* pid, const char* file) {
  char path[48];
  const std::size_t length = std::strlen(pid);
  std::memcpy(path, pid, length);
  path[length] = '/';
  std::memcpy(path + length + 1, file, std::strlen(file) + 1);
  return ::openat(dir, path, O_RDONLY | O_CLOEXEC);
}

// The least a scan can do: files indexed directly by pid, one pread each, and only enough parsing
// to prove the bytes were looked at (the end of comm, the first digit of the resident count).
class FloorScan {
 public:
  FloorScan() : files_(4 * 1024 * 1024, Files{}) {}
  ~FloorScan() {
    for (const Files& f : files_) {
      if (f.stat >= 0) ::close(f.stat), ::close(f.statm);
    }
  }
  FloorScan(const FloorScan&) = delete;
  FloorScan& operator=(const FloorScan&) = delete;

  std::size_t scan() {
    std::size_t seen = 0;
    lister_.forEach([&](const char* name) {
      const int pid = pidOf(name);
      if (pid <= 0 || static_cast<std::size_t>(pid) >= files_.size()) return;
      Files& f = files_[static_cast<std::size_t>(pid)];
      if (f.stat < 0) {
        f.stat = openAt(lister_.fd(), name, "stat");
        f.statm = openAt(lister_.fd(), name, "statm");
      }
      const ssize_t a = ::pread(f.stat, stat_, sizeof stat_, 0);
      const ssize_t b = ::pread(f.statm, statm_, sizeof statm_, 0);
      if (a > 0 && b > 0 && std::string_view(stat_, static_cast<std::size_t>(a)).rfind(')') != 0) {
        seen += static_cast<std::size_t>(statm_[0] != ' ');
      }
    });
    return seen;
  }

 private:
  struct Files {
    int stat = -1;
    int statm = -1;
  };
  ProcLister lister_;
  std::vector<Files> files_;
  char stat_[4096];
  char statm_[256];
};

// The same reads with an open and a close around each.
class OpenReadCloseScan {
 public:
  std::size_t scan() {
    std::size_t seen = 0;
    lister_.forEach([&](const char* name) {
      const int stat = openAt(lister_.fd(), name, "stat");
      const int statm = openAt(lister_.fd(), name, "statm");
      const ssize_t a = stat >= 0 ? ::read(stat, stat_, sizeof stat_) : -1;
      const ssize_t b = statm >= 0 ? ::read(statm, statm_, sizeof statm_) : -1;
      if (stat >= 0) ::close(stat);
      if (statm >= 0) ::close(statm);
      if (a > 0 && b > 0 && std::string_view(stat_, static_cast<std::size_t>(a)).rfind(')') != 0) {
        seen += static_cast<std::size_t>(statm_[0] != ' ');
      }
    });
    return seen;
  }

 private:
  ProcLister lister_;
  char stat_[4096];
  char statm_[256];
};

void BM_OurScan(benchmark::State& state) {
  auto reader = ProcessReader::makePlatform();
  ProcessScanner scanner;
  std::size_t processes = scanner.scan(now(), *reader).processes.size();  // opens every file once
  for (auto _ : state) {
    ProcessScanResult result = scanner.scan(now(), *reader);
    processes = result.processes.size();
    benchmark::DoNotOptimize(result);
  }
  state.counters["processes"] = static_cast<double>(processes);
}

void BM_FloorScan(benchmark::State& state) {
  FloorScan floor;
  std::size_t processes = floor.scan();
  for (auto _ : state) {
    processes = floor.scan();
    benchmark::DoNotOptimize(processes);
  }
  state.counters["processes"] = static_cast<double>(processes);
}

void BM_OpenReadCloseScan(benchmark::State& state) {
  OpenReadCloseScan scan;
  std::size_t processes = 0;
  for (auto _ : state) {
    processes = scan.scan();
    benchmark::DoNotOptimize(processes);
  }
  state.counters["processes"] = static_cast<double>(processes);
}

void BM_OurCheapTick(benchmark::State& state) {
  auto counters = SystemCounters::makePlatform();
  for (auto _ : state) {
    CPUReading cpu = counters->readCPU();
    std::optional<MemorySample> memory = counters->readMemory();
    std::optional<NetCounters> net = counters->readNetworkBytes();
    benchmark::DoNotOptimize(cpu);
    benchmark::DoNotOptimize(memory);
    benchmark::DoNotOptimize(net);
  }
}

void BM_CheapFloor(benchmark::State& state) {
  const int files[] = {::open("/proc/stat", O_RDONLY | O_CLOEXEC),
                       ::open("/proc/meminfo", O_RDONLY | O_CLOEXEC),
                       ::open("/proc/net/dev", O_RDONLY | O_CLOEXEC)};
  std::vector<char> buffer(16 * 1024);
  for (auto _ : state) {
    for (const int fd : files) benchmark::DoNotOptimize(::pread(fd, buffer.data(), buffer.size(), 0));
  }
  for (const int fd : files) ::close(fd);
}

BENCHMARK(BM_OurScan)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FloorScan)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OpenReadCloseScan)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_OurCheapTick)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CheapFloor)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmark

BENCHMARK_MAIN();
