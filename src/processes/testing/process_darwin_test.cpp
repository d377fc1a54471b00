// The darwin process-control readers, compiled for Linux against the stub SDK and run on the
// scripted fake kernel: record sizes, the start stamp, the stopped state and the time units.
#include <gtest/gtest.h>
#include <sys/proc_info.h>

#include <cstring>

#include "processes/process_detail_reader.h"
#include "processes/process_os.h"
#include "sampling/testing/fake_darwin_kernel.h"

namespace quillmark {
namespace {

namespace fake = fake_darwin;

fake::Process appProcess() {
  fake::Process process;
  process.pid = 321;
  proc_bsdinfo bsd{};
  bsd.pbi_status = SSTOP;
  bsd.pbi_ppid = 1;
  bsd.pbi_start_tvsec = 1700000000;
  bsd.pbi_start_tvusec = 250000;
  process.bsd = bsd;
  process.task.pti_resident_size = 4096;
  process.task.pti_virtual_size = 1 << 30;
  process.task.pti_total_user = 3'000'000'000ull;  // Mach units: 125/3 ns each
  process.task.pti_total_system = 3;
  process.task.pti_threadnum = 7;
  process.name = "Safari";
  process.path = "/Applications/Safari.app/Contents/MacOS/Safari";
  return process;
}

TEST(ProcessDarwinTest, ReadsStampStateAndDetailFromWholeRecords) {
  fake::reset();
  fake::kernel().processes = {appProcess()};
  EXPECT_EQ(StartTimeSource::platform().startTime(321), 1700000000u);
  EXPECT_EQ(ProcessSignals::platform().isStopped(321), true);
  EXPECT_EQ(ProcessSignals::platform().shortName(321), "Safari");
  EXPECT_FALSE(StartTimeSource::platform().startTime(999));
  EXPECT_FALSE(ProcessSignals::platform().isStopped(999));
  EXPECT_FALSE(CgroupFreezer::platform().freezableUnit(321));

  const auto detail = ProcessDetailReader::read(321, "fallback");
  ASSERT_TRUE(detail);
  EXPECT_EQ(detail->path, "/Applications/Safari.app/Contents/MacOS/Safari");
  EXPECT_EQ(detail->cpuUserTime, 125'000'000'000ull);
  EXPECT_EQ(detail->cpuSystemTime, 125u);
  EXPECT_EQ(detail->threadCount, 7);
  EXPECT_EQ(detail->parentPid, 1);
  EXPECT_DOUBLE_EQ(*detail->startDate, 1700000000.25);
  EXPECT_EQ(fake::kernel().pidinfoSizes.back(), 232);

  // No path: the dash. No record: no detail.
  fake::kernel().processes[0].path.reset();
  EXPECT_EQ(ProcessDetailReader::read(321, "x")->path, ProcessDetailReader::kNoPath);
  fake::kernel().processes[0].bsd.reset();
  EXPECT_FALSE(ProcessDetailReader::read(321, "x"));
  EXPECT_FALSE(StartTimeSource::platform().startTime(321));
}

}  // namespace
}  // namespace quillmark
