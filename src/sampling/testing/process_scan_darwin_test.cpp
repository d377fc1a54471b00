// The macOS process reader against the fake kernel: the byte-counted pid list, the task record
// size, the skips and the names.
#include <gtest/gtest.h>

#include <algorithm>

#include "sampling/process_scan.h"
#include "sampling/testing/fake_darwin_kernel.h"

namespace quillmark {
namespace {

namespace fake = fake_darwin;

fake::Process process(int pid, std::string name, std::uint64_t user = 0, std::uint64_t system = 0,
                      std::uint64_t resident = 0, std::uint64_t started = 1'700'000'000) {
  fake::Process p;
  p.pid = pid;
  p.bsd = proc_bsdinfo{};
  p.bsd->pbi_start_tvsec = started;
  p.name = std::move(name);
  p.task.pti_total_user = user;
  p.task.pti_total_system = system;
  p.task.pti_resident_size = resident;
  p.task.pti_virtual_size = 0xDEAD0000;  // must not be mistaken for the resident size
  return p;
}

class DarwinProcesses : public ::testing::Test {
 protected:
  void SetUp() override { fake::reset(); }
  std::vector<RawProcess> read() { return reader->readProcessesRaw(names); }
  static std::vector<int> pidsOf(const std::vector<RawProcess>& list) {
    std::vector<int> pids;
    for (const auto& p : list) pids.push_back(p.pid);
    return pids;
  }

  fake::Kernel& k = fake::kernel();
  std::unique_ptr<ProcessReader> reader = ProcessReader::makePlatform();
  NameCache names;
};

TEST_F(DarwinProcesses, ReadsTaskTimesAndResidentSizeAsReported) {
  k.pids = {0, 1, 77};
  k.processes = {process(1, "launchd", 125, 3, 4096), process(77, "Finder", 1'000'000, 2'000'000, 1 << 26)};
  const auto list = read();
  ASSERT_EQ(list.size(), 2u);
  // Mach ticks are kept as the record gives them (no timebase scaling).
  EXPECT_EQ(list[0], (RawProcess{1, "launchd", 128, 4096, 1'700'000'000}));
  EXPECT_EQ(list[1], (RawProcess{77, "Finder", 3'000'000, 1u << 26, 1'700'000'000}));
  for (const auto& [pid, flavour] : k.pidinfoCalls) {
    EXPECT_NE(pid, 0) << "the kernel task is never inspected";
    EXPECT_EQ(flavour, PROC_PIDTASKALLINFO);
  }
  for (int size : k.pidinfoSizes) EXPECT_EQ(size, 136 + 96);
}

TEST_F(DarwinProcesses, PidListIsCountedInBytes) {
  for (int pid = 1; pid <= 100; ++pid) {
    k.pids.push_back(pid);
    k.processes.push_back(process(pid, "p" + std::to_string(pid)));
  }
  const auto list = read();
  EXPECT_EQ(list.size(), 100u);
  ASSERT_EQ(k.listBufferSizes.size(), 2u);
  EXPECT_EQ(k.listBufferSizes[0], 0);        // the sizing call
  EXPECT_EQ(k.listBufferSizes[1], 120 * 4);  // (100 + 20) slots of 4 bytes

  // A small table still gets at least 64 slots.
  fake::reset();
  k.pids = {5};
  k.processes = {process(5, "a")};
  EXPECT_EQ(pidsOf(read()), std::vector<int>{5});
  EXPECT_EQ(k.listBufferSizes[1], 64 * 4);
}

TEST_F(DarwinProcesses, OnlyTheFilledPartOfTheListIsRead) {
  k.pids = {10, 11, 12};
  k.processes = {process(10, "a"), process(11, "b"), process(12, "c")};
  k.listFilledAnswer = 2 * 4;  // the kernel filled two slots (the rest is stale)
  EXPECT_EQ(pidsOf(read()), (std::vector<int>{10, 11}));

  for (int failed : {0, -1}) {
    k.listFilledAnswer = failed;
    EXPECT_TRUE(read().empty()) << failed;
  }
  k.listFilledAnswer.reset();
  k.listSizeAnswer = 0;
  EXPECT_TRUE(read().empty());
}

TEST_F(DarwinProcesses, ProcessesThatCannotBeInspectedAreLeftOut) {
  k.pids = {20, 21, 22, 23};
  k.processes = {process(20, "short"), process(21, "gone"), process(22, "ok")};
  k.processes[0].infoResult = 88;  // a partial record
  k.processes[1].infoResult = 0;   // ended, or another user's
  // 23 is listed but unknown to the kernel by the time it is asked.
  EXPECT_EQ(pidsOf(read()), std::vector<int>{22});
  EXPECT_EQ(names.count(20) + names.count(21) + names.count(23), 0u) << "no name read for a skipped pid";
}

TEST_F(DarwinProcesses, NamesAreRepairedCachedAndNeverEmpty) {
  k.pids = {30, 31, 32, 33};
  k.processes = {process(30, "Safari"), process(31, ""), process(32, std::string("ab\xFF\xFE", 4)),
                 process(33, std::string("mds\0garbage", 11))};
  k.processes[1].name.reset();  // proc_name fails: EPERM for another user's process
  auto list = read();
  ASSERT_EQ(list.size(), 4u);
  EXPECT_EQ(list[0].name, "Safari");
  EXPECT_EQ(list[1].name, "unknown");
  EXPECT_EQ(list[2].name, "ab\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(list[3].name, "mds");
  EXPECT_EQ(names.at(31).name, "unknown");

  // The second scan takes every name from the cache, even one the kernel would now answer.
  k.processes[1].name = "late";
  k.nameCalls.clear();
  list = read();
  EXPECT_TRUE(k.nameCalls.empty());
  EXPECT_EQ(list[1].name, "unknown");

  // A process that reused the pid (it started later) is named afresh.
  k.processes[1].bsd->pbi_start_tvsec += 5;
  list = read();
  EXPECT_EQ(list[1].name, "late");
  EXPECT_EQ(list[1].startTime, 1'700'000'005u);
}

TEST_F(DarwinProcesses, CpuTimeOverflowIsAFault) {
  k.pids = {40};
  k.processes = {process(40, "x", ~0ull, 1)};
  EXPECT_DEATH((void)read(), "check failed");
}

}  // namespace
}  // namespace quillmark
