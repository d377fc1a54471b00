#include "sampling/linux/process_scan_linux.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

using testing::TempTree;

// A forked child that names itself, optionally fills some memory, reports ready over a pipe and
// then sleeps or spins until it is killed.
class Child {
 public:
  enum class Mode { sleep, spin };
  explicit Child(const char* name, Mode mode = Mode::sleep, std::size_t touchBytes = 0) {
    int ready[2];
    if (::pipe(ready) != 0) std::abort();
    pid_ = ::fork();
    if (pid_ == 0) {
      ::prctl(PR_SET_NAME, name);
      if (touchBytes) {
        void* block = std::malloc(touchBytes);
        std::memset(block, 0x5A, touchBytes);
      }
      (void)!::write(ready[1], "x", 1);
      volatile unsigned long spins = 0;
      for (;;) {
        if (mode == Mode::spin) {
          spins = spins + 1;
        } else {
          ::pause();
        }
      }
    }
    char byte = 0;
    (void)!::read(ready[0], &byte, 1);
    ::close(ready[0]);
    ::close(ready[1]);
  }
  ~Child() { end(); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void end() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }
  [[nodiscard]] pid_t pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
};

double seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

const ProcessSample* find(const ProcessScanResult& result, pid_t pid) {
  for (const auto& process : result.processes) {
    if (process.pid == pid) return &process;
  }
  return nullptr;
}

const RawProcess* find(const std::vector<RawProcess>& processes, pid_t pid) {
  for (const auto& process : processes) {
    if (process.pid == pid) return &process;
  }
  return nullptr;
}

// Fields after comm: utime 3 ticks, stime 2 ticks (rss 9 pages, an estimate the reader ignores).
constexpr std::string_view kTail = " S 1 1 1 0 -1 0 0 0 0 0 3 2 0 0 20 0 1 0 100 0 9 0\n";
constexpr std::string_view kStatm = "100 5 2 1 0 3 0\n";  // 5 resident pages

TEST(LinuxProcessReader, ReadsAFakeProcTreeAndSkipsWhatIsNotAProcess) {
  TempTree tree;
  tree.write("proc/100/stat", "100 (a) b (c)" + std::string(kTail));
  tree.write("proc/100/statm", kStatm);
  tree.write("proc/200/stat", "200 (cut) S 1 1 1 0");
  tree.write("proc/200/statm", kStatm);
  tree.makeDirectory("proc/300");  // exited between listing and reading
  tree.write("proc/400/stat", "400 (no statm)" + std::string(kTail));
  for (const char* other : {"self", "0", "12x"}) {
    tree.write("proc/" + std::string(other) + "/stat", "1 (x)" + std::string(kTail));
    tree.write("proc/" + std::string(other) + "/statm", kStatm);
  }
  tree.write("proc/meminfo", "MemTotal: 1 kB\n");

  LinuxProcessReader reader(tree.root());
  NameCache names;
  const auto processes = reader.readProcessesRaw(names);
  ASSERT_EQ(processes.size(), 1u);
  EXPECT_EQ(processes[0].pid, 100);
  EXPECT_EQ(processes[0].name, "a) b (c");
  EXPECT_EQ(processes[0].cpuTime,
            std::uint64_t{5'000'000'000} / static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK)));
  EXPECT_EQ(processes[0].mem, 5u * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
  EXPECT_EQ(names.at(100), "a) b (c");

  // The name is taken once per process; CPU time and memory on every scan.
  tree.write("proc/100/stat", "100 (renamed) S 1 1 1 0 -1 0 0 0 0 0 30 20 0 0 20 0 1 0 100 0 6 0\n");
  tree.write("proc/100/statm", "100 6 2 1 0 3 0\n");
  const auto again = reader.readProcessesRaw(names);
  ASSERT_EQ(again.size(), 1u);
  EXPECT_EQ(again[0].name, "a) b (c");
  EXPECT_EQ(again[0].cpuTime,
            std::uint64_t{50'000'000'000} / static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK)));
  EXPECT_EQ(again[0].mem, 6u * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));

  EXPECT_TRUE(LinuxProcessReader(tree.path("nowhere")).readProcessesRaw(names).empty());
}

TEST(LinuxProcessReader, BusyChildShowsAboutOneProcessor) {
  Child busy("qm-busy", Child::Mode::spin);
  LinuxProcessReader reader;
  ProcessScanner scanner;
  scanner.scan(seconds(), reader);
  std::this_thread::sleep_for(std::chrono::seconds(1));
  const ProcessScanResult result = scanner.scan(seconds(), reader);
  const ProcessSample* sample = find(result, busy.pid());
  ASSERT_NE(sample, nullptr);
  EXPECT_EQ(sample->name, "qm-busy");
  EXPECT_GT(sample->cpuPercent, 60.0);
  EXPECT_LT(sample->cpuPercent, 140.0);
}

TEST(LinuxProcessReader, ResidentMemoryMatchesStatm) {
  Child child("qm-rss", Child::Mode::sleep, 24 * 1024 * 1024);
  LinuxProcessReader reader;
  NameCache names;
  const auto processes = reader.readProcessesRaw(names);
  std::uint64_t size = 0, resident = 0;
  std::ifstream("/proc/" + std::to_string(child.pid()) + "/statm") >> size >> resident;
  const RawProcess* process = find(processes, child.pid());
  ASSERT_NE(process, nullptr);
  EXPECT_EQ(process->mem, resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)));
  EXPECT_GT(process->mem, 24u * 1024 * 1024);
}

TEST(LinuxProcessReader, ExitedChildLeavesEveryCacheAndItsFile) {
  Child child("qm-exits");
  LinuxProcessReader reader;
  ProcessScanner scanner;
  const ProcessScanResult first = scanner.scan(seconds(), reader);
  ASSERT_TRUE(first.livePids.count(child.pid()));
  EXPECT_TRUE(reader.keepsOpen(child.pid()));
  EXPECT_EQ(scanner.processNameCache.at(child.pid()), "qm-exits");

  const pid_t pid = child.pid();
  child.end();
  const ProcessScanResult second = scanner.scan(seconds(), reader);
  EXPECT_FALSE(second.livePids.count(pid));
  EXPECT_EQ(find(second, pid), nullptr);
  EXPECT_FALSE(scanner.prevProcessCPUTime.count(pid));
  EXPECT_FALSE(scanner.processNameCache.count(pid));
  EXPECT_FALSE(reader.keepsOpen(pid));
  EXPECT_EQ(reader.keptOpenCount(), second.livePids.size());
}

// The kernel hands out the pid after ns_last_pid next; needs CAP_SYS_ADMIN, and other programs
// forking meanwhile can take the pid first, hence the retries.
bool forkAtPid(pid_t wanted, std::unique_ptr<Child>& child, const char* name) {
  for (int attempt = 0; attempt < 50; ++attempt) {
    std::ofstream last("/proc/sys/kernel/ns_last_pid");
    if (!(last << (wanted - 1) << std::flush)) return false;
    last.close();
    child = std::make_unique<Child>(name);
    if (child->pid() == wanted) return true;
    child.reset();
  }
  return false;
}

TEST(LinuxProcessReader, ReusedPidIsReadAfreshUnderItsNewName) {
  auto first = std::make_unique<Child>("qm-first");
  const pid_t pid = first->pid();
  LinuxProcessReader reader;
  ProcessScanner scanner;
  scanner.scan(seconds(), reader);
  ASSERT_TRUE(reader.keepsOpen(pid));
  first.reset();

  std::unique_ptr<Child> second;
  if (!forkAtPid(pid, second, "qm-second")) GTEST_SKIP() << "cannot choose the next pid here";
  const ProcessScanResult result = scanner.scan(seconds(), reader);
  const ProcessSample* sample = find(result, pid);
  ASSERT_NE(sample, nullptr);
  EXPECT_EQ(sample->name, "qm-second");
  EXPECT_TRUE(reader.keepsOpen(pid));
}

TEST(LinuxProcessReader, FallsBackToOpenReadCloseWhenDescriptorsRunShort) {
  std::vector<std::unique_ptr<Child>> children;
  for (int i = 0; i < 40; ++i) children.push_back(std::make_unique<Child>("qm-many"));
  auto expectAll = [&](const std::vector<RawProcess>& processes) {
    EXPECT_NE(find(processes, ::getpid()), nullptr);
    for (const auto& child : children) EXPECT_NE(find(processes, child->pid()), nullptr);
  };
  NameCache names;

  LinuxProcessReader none(std::string("/"), 0);
  expectAll(none.readProcessesRaw(names));
  EXPECT_EQ(none.keptOpenCount(), 0u);

  LinuxProcessReader few(std::string("/"), 10);
  expectAll(few.readProcessesRaw(names));
  EXPECT_EQ(few.keptOpenCount(), 10u);

  // The process itself runs out of descriptors after a handful more.
  int used = 0;
  for (int fd = 0; fd < 4096; ++fd) used += ::fcntl(fd, F_GETFD) != -1;
  rlimit saved{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &saved), 0);
  rlimit tight = saved;
  tight.rlim_cur = static_cast<rlim_t>(used + 20);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
  LinuxProcessReader squeezed(std::string("/"), 100000);
  const auto processes = squeezed.readProcessesRaw(names);
  const std::size_t kept = squeezed.keptOpenCount();
  ::setrlimit(RLIMIT_NOFILE, &saved);
  expectAll(processes);
  EXPECT_LT(kept, 10u);
}

}  // namespace
}  // namespace quillmark
