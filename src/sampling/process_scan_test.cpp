#include "sampling/process_scan.h"

#include <gtest/gtest.h>

#include "sampling/testing/fake_readers.h"

namespace quillmark {
namespace {

using testing::FakeProcessReader;

constexpr std::uint64_t kSecond = 1'000'000'000;

TEST(ProcessCPUPercentTest, PercentOfOneProcessorAndItsGuards) {
  EXPECT_DOUBLE_EQ(processCPUPercent(0, 2 * kSecond, 2.0), 100.0);
  EXPECT_DOUBLE_EQ(processCPUPercent(0, 8 * kSecond, 2.0), 400.0);    // four busy cores, not divided
  EXPECT_EQ(processCPUPercent(std::nullopt, 8 * kSecond, 2.0), 0.0);  // first sight
  EXPECT_EQ(processCPUPercent(5 * kSecond, kSecond, 2.0), 0.0);       // reused pid, lower time
  EXPECT_EQ(processCPUPercent(0, kSecond, 0.1), 0.0);                 // too close to divide
  EXPECT_EQ(processCPUPercent(kSecond, kSecond, 2.0), 0.0);           // idle is exactly 0
}

TEST(ProcessDisplayNameTest, CutOrEmptyNamesStillDisplay) {
  EXPECT_EQ(processDisplayName("abc\xE2\x82"), "abc\xEF\xBF\xBD\xEF\xBF\xBD");  // cut inside a character
  EXPECT_EQ(processDisplayName(""), "unknown");
}

TEST(ProcessScannerTest, PercentagesComeFromTheDifferenceToThePreviousScan) {
  FakeProcessReader reader;
  reader.table = {{10, "busy", 1 * kSecond, 4096}, {20, "idle", 5 * kSecond, 8192}};
  ProcessScanner scanner;
  auto first = scanner.scan(1000.0, reader);
  ASSERT_EQ(first.processes.size(), 2u);
  EXPECT_EQ(first.processes[0].cpuPercent, 0.0);
  EXPECT_EQ(first.livePids, (PidSet{10, 20}));

  reader.table[0].cpuTime = 3 * kSecond;  // 2 s of CPU over 4 s
  auto second = scanner.scan(1004.0, reader);
  EXPECT_EQ(second.processes[0], (ProcessSample{10, "busy", 50.0, 4096}));
  EXPECT_EQ(second.processes[1].cpuPercent, 0.0);

  // The forced scan right after a timer scan: every process shows 0.
  reader.table[0].cpuTime = 4 * kSecond;
  auto tooSoon = scanner.scan(1004.05, reader);
  EXPECT_EQ(tooSoon.processes[0].cpuPercent, 0.0);
  EXPECT_EQ(scanner.prevProcessCPUTime[10].cpuTime, 4 * kSecond);
}

TEST(ProcessScannerTest, CachesFollowTheLivingAndNamesAreReadOncePerPid) {
  FakeProcessReader reader;
  reader.table = {{10, "a", kSecond, 1}, {20, "b", kSecond, 1}};
  ProcessScanner scanner;
  (void)scanner.scan(1000.0, reader);
  EXPECT_EQ(reader.nameReads, 2);

  // pid 20 exits; pid 10 is reused by a new program (a later start) within one interval.
  reader.table = {{10, "new name", 3 * kSecond, 1, 7}};
  auto result = scanner.scan(1002.0, reader);
  EXPECT_EQ(reader.nameReads, 3);
  EXPECT_EQ(result.processes[0].name, "new name");
  EXPECT_EQ(result.processes[0].cpuPercent, 0.0);  // not the old program's time as its own
  EXPECT_EQ(scanner.prevProcessCPUTime.size(), 1u);
  EXPECT_EQ(scanner.processNameCache.size(), 1u);
  EXPECT_EQ(reader.lastRetained, (PidSet{10}));

  // A failed listing clears both caches, so everyone restarts at 0 %.
  reader.table.clear();
  EXPECT_TRUE(scanner.scan(1004.0, reader).livePids.empty());
  EXPECT_TRUE(scanner.prevProcessCPUTime.empty());
  EXPECT_TRUE(scanner.processNameCache.empty());
}

}  // namespace
}  // namespace quillmark
