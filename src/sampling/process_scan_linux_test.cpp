#include "sampling/linux/process_scan_linux.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "sampling/linux/proc_parsers.h"
#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

using testing::TempTree;

// A forked child that names itself, optionally fills some memory, reports ready over a pipe, then
// sleeps or spins until it is killed.
class Child {
 public:
  explicit Child(const char* name, bool spin = false, std::size_t touchBytes = 0) {
    int ready[2];
    if (::pipe(ready) != 0) std::abort();
    pid_ = ::fork();
    if (pid_ == 0) {
      ::prctl(PR_SET_NAME, name);
      if (touchBytes) std::memset(std::malloc(touchBytes), 0x5A, touchBytes);
      (void)!::write(ready[1], "x", 1);
      volatile unsigned long spins = 0;
      for (;;) {
        if (!spin) ::pause();
        spins = spins + 1;
      }
    }
    char byte = 0;
    (void)!::read(ready[0], &byte, 1);
    ::close(ready[0]);
    ::close(ready[1]);
  }
  ~Child() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  [[nodiscard]] pid_t pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
};

double seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

template <class Row>
const Row* find(const std::vector<Row>& rows, pid_t pid) {
  for (const Row& row : rows) {
    if (row.pid == pid) return &row;
  }
  return nullptr;
}

TEST(LinuxProcessReader, ReadsAFakeProcTreeAndSkipsWhatIsNotAProcess) {
  // After comm: utime 3 ticks, stime 2 ticks ... rss 9 pages (an estimate; statm has the 5 exact).
  const std::string tail = " S 1 1 1 0 -1 0 0 0 0 0 3 2 0 0 20 0 1 0 100 0 9 0\n";
  TempTree tree;
  for (const char* dir : {"100", "200", "self", "0", "12x"}) {
    tree.write("proc/" + std::string(dir) + "/stat", "1 (a) b (c)" + tail);
    tree.write("proc/" + std::string(dir) + "/statm", "100 5 2 1 0 3 0\n");
  }
  tree.write("proc/200/stat", "200 (cut) S 1 1 1 0");
  tree.makeDirectory("proc/300");  // exited between listing and reading
  tree.write("proc/400/stat", "400 (no statm)" + tail);

  LinuxProcessReader reader(tree.root());
  NameCache names;
  const auto processes = reader.readProcessesRaw(names);
  const auto tick = static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));
  const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  ASSERT_EQ(processes.size(), 1u);
  EXPECT_EQ(processes[0], (RawProcess{100, "a) b (c", std::uint64_t{5'000'000'000} / tick, 5 * page, 100}));
  EXPECT_EQ(names.at(100).name, "a) b (c");

  // The name is taken once per process; CPU time and memory on every scan.
  tree.write("proc/100/stat", "100 (renamed) S 1 1 1 0 -1 0 0 0 0 0 30 20 0 0 20 0 1 0 100 0 6 0\n");
  tree.write("proc/100/statm", "100 6 2 1 0 3 0\n");
  EXPECT_EQ(reader.readProcessesRaw(names),
            (std::vector<RawProcess>{{100, "a) b (c", std::uint64_t{50'000'000'000} / tick, 6 * page, 100}}));
  // Another process under the same pid (it started later) is named afresh, kept files or not.
  tree.write("proc/100/stat", "100 (reused) S 1 1 1 0 -1 0 0 0 0 0 1 1 0 0 20 0 1 0 250 0 6 0\n");
  for (std::size_t keep : {0, 100}) {
    ProcessScanner scanner;
    scanner.processNameCache = names;
    scanner.prevProcessCPUTime[100] = {100, 0};
    LinuxProcessReader fresh(tree.root(), keep);
    const auto scan = scanner.scan(1000.0, fresh);
    ASSERT_EQ(scan.processes.size(), 1u);
    EXPECT_EQ(scan.processes[0].name, "reused") << keep;
  }

  EXPECT_TRUE(LinuxProcessReader(tree.path("nowhere")).readProcessesRaw(names).empty());
}

TEST(LinuxProcessReader, MeasuresRealChildrenAndForgetsThoseThatExit) {
  Child busy("qm-busy", true);
  auto resident = std::make_unique<Child>("qm-rss", false, 24 << 20);
  const pid_t residentPid = resident->pid();
  LinuxProcessReader reader;
  ProcessScanner scanner;
  // The child's CPU time as the kernel's clock for it tells, read just before and just after each
  // scan, so the time the scans saw lies between: on a loaded machine the child gets less than a
  // whole processor, and the test thread may stall anywhere, but the bounds still hold.
  clockid_t childClock{};
  ASSERT_EQ(clock_getcpuclockid(busy.pid(), &childClock), 0);
  const auto cpuSeconds = [childClock] {
    timespec now{};
    clock_gettime(childClock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
  };
  const double firstBefore = cpuSeconds();
  const double wallBefore = seconds();
  scanner.scan(wallBefore, reader);
  const double firstAfter = cpuSeconds();
  // Until the child has had a fifth of a second of processor time, however long that takes.
  while (cpuSeconds() - firstAfter < 0.2) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  const double secondBefore = cpuSeconds();
  const double wallAfter = seconds();
  const ProcessScanResult result = scanner.scan(wallAfter, reader);
  const double secondAfter = cpuSeconds();
  std::uint64_t size = 0, pages = 0;
  std::ifstream("/proc/" + std::to_string(residentPid) + "/statm") >> size >> pages;

  const ProcessSample* spinning = find(result.processes, busy.pid());
  ASSERT_NE(spinning, nullptr);
  EXPECT_EQ(spinning->name, "qm-busy");
  // /proc counts user and system time in whole ticks, each cut short by up to one, from a total
  // the scheduler brings up to date at its own tick (at most as long again).
  const double slack = 3.0 / static_cast<double>(sysconf(_SC_CLK_TCK));
  const double toPercent = 100.0 / (wallAfter - wallBefore);
  EXPECT_GE(spinning->cpuPercent, (secondBefore - firstAfter - slack) * toPercent);
  EXPECT_LE(spinning->cpuPercent, (secondAfter - firstBefore + slack) * toPercent);
  EXPECT_GT(spinning->cpuPercent, 0.0);
  const ProcessSample* filled = find(result.processes, residentPid);
  ASSERT_NE(filled, nullptr);
  // Exactly what ps shows; stat's own rss field is an estimate that misses by tens of pages.
  EXPECT_EQ(filled->memoryBytes, pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
  EXPECT_GT(filled->memoryBytes, 24u << 20);
  EXPECT_TRUE(reader.keepsOpen(residentPid));

  resident.reset();
  const ProcessScanResult after = scanner.scan(seconds(), reader);
  EXPECT_FALSE(after.livePids.count(residentPid));
  EXPECT_EQ(find(after.processes, residentPid), nullptr);
  EXPECT_FALSE(scanner.prevProcessCPUTime.count(residentPid));
  EXPECT_FALSE(scanner.processNameCache.count(residentPid));
  EXPECT_FALSE(reader.keepsOpen(residentPid));
  EXPECT_EQ(reader.keptOpenCount(), after.livePids.size());
}

// Start times have clock-tick resolution: wait until the tick after the process's start has begun.
void waitForTheTickAfterTheStartOf(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  std::string stat((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const auto parsed = procfs::parsePidStat(stat);
  if (!parsed) return;
  const auto hz = static_cast<double>(sysconf(_SC_CLK_TCK));
  for (;;) {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    if ((static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9) * hz >
        static_cast<double>(parsed->startTicks) + 1.5) {
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

TEST(LinuxProcessReader, ReusedPidIsReadAfreshUnderItsNewName) {
  // With its files kept open, and read the slow way (past the keep limit, few descriptors).
  for (const std::size_t keep : {std::size_t{16384}, std::size_t{0}}) {
    auto first = std::make_unique<Child>("qm-first");
    const pid_t pid = first->pid();
    LinuxProcessReader reader("/", keep);
    ProcessScanner scanner;
    scanner.scan(seconds(), reader);
    waitForTheTickAfterTheStartOf(pid);
    first.reset();

    // The kernel hands out the pid after ns_last_pid next. That needs CAP_SYS_ADMIN, and programs
    // forking meanwhile can take the pid first, hence the retries.
    std::unique_ptr<Child> second;
    for (int attempt = 0; attempt < 50 && !second; ++attempt) {
      if (!(std::ofstream("/proc/sys/kernel/ns_last_pid") << pid - 1 << std::flush)) break;
      second = std::make_unique<Child>("qm-second");
      if (second->pid() != pid) second.reset();
    }
    if (!second) GTEST_SKIP() << "cannot choose the next pid here";
    const ProcessScanResult result = scanner.scan(seconds(), reader);
    const ProcessSample* sample = find(result.processes, pid);
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->name, "qm-second") << "keep limit " << keep;
  }
}

TEST(LinuxProcessReader, FallsBackToOpenReadCloseWhenDescriptorsRunShort) {
  std::vector<std::unique_ptr<Child>> children;
  for (int i = 0; i < 40; ++i) children.push_back(std::make_unique<Child>("qm-many"));
  auto expectAll = [&](const std::vector<RawProcess>& processes) {
    EXPECT_NE(find(processes, ::getpid()), nullptr);
    for (const auto& child : children) EXPECT_NE(find(processes, child->pid()), nullptr);
  };
  NameCache names;
  LinuxProcessReader none("/", 0);
  expectAll(none.readProcessesRaw(names));
  EXPECT_EQ(none.keptOpenCount(), 0u);
  LinuxProcessReader few("/", 10);
  expectAll(few.readProcessesRaw(names));
  EXPECT_EQ(few.keptOpenCount(), 10u);

  // The program runs out of descriptors twenty past what it holds now.
  int used = 0;
  for (int fd = 0; fd < 4096; ++fd) used += ::fcntl(fd, F_GETFD) != -1;
  rlimit saved{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &saved), 0);
  rlimit tight = saved;
  tight.rlim_cur = static_cast<rlim_t>(used + 20);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
  LinuxProcessReader squeezed("/", 100000);
  const auto processes = squeezed.readProcessesRaw(names);
  const std::size_t kept = squeezed.keptOpenCount();
  ::setrlimit(RLIMIT_NOFILE, &saved);
  expectAll(processes);
  EXPECT_LT(kept, 10u);
}

}  // namespace
}  // namespace quillmark
