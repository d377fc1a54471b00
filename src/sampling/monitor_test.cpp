#include "sampling/monitor.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "base/paths.h"
#include "sampling/testing/monitor_rig.h"

namespace quillmark {
namespace {

CPUReading cpuReading(std::uint64_t busy, std::uint64_t idle) {
  return CPUReading{CPUTicks{busy, 0, idle, 0}, {CoreTicks{0, CPUTicks{busy, 0, idle, 0}}}};
}

class MonitorTest : public ::testing::Test, protected testing::MonitorRig {
 protected:
  MonitorTest() {
    counters.cpu = {cpuReading(100, 900), cpuReading(150, 950), cpuReading(250, 1050)};
    counters.memory = MemorySample{1000, 300, 100, 50, 200, 350};
    counters.net = {NetCounters{{"en0", 1000, 500}}, NetCounters{{"en0", 5000, 900}}};
    processes.table = {{10, "launchd", 1'000'000'000, 4096}, {42, "Safari", 2'000'000'000, 8192}};
  }

  Monitor::Snapshot snapshotWith(double cpu) {
    Monitor::Snapshot snap;
    snap.cpu.total = cpu;
    snap.memory = MemorySample{100, 50, 0, 0, 0, 50};
    return snap;
  }
};

TEST_F(MonitorTest, StartMeasuresAtOnceAndFirstTickReportsNoLoadOrRates) {
  counters.bootTime = clock.unixNow() - 3600;
  monitor->start(2.0);
  EXPECT_TRUE(monitor->isSampling());
  EXPECT_EQ(queue.pending(), 2u);  // the boot time, then the measurement: readers stay on the queue
  EXPECT_EQ(counters.bootReads, 0);
  finishMeasurement();
  EXPECT_EQ(counters.bootReads, 1);
  EXPECT_FALSE(monitor->isSampling());
  EXPECT_EQ(monitor->cpu().total, 0);  // no previous counters yet
  EXPECT_TRUE(monitor->cpu().perCore.empty());
  EXPECT_EQ(monitor->network(), NetSample{});  // elapsed is 0 on the first measurement
  EXPECT_EQ(monitor->memory().total, 1000u);
  EXPECT_DOUBLE_EQ(monitor->uptime(), 3600);

  loop.advance(2.0);
  finishMeasurement();
  EXPECT_DOUBLE_EQ(monitor->cpu().total, 50.0);  // 50 busy of 100 ticks
  EXPECT_EQ(monitor->cpu().perCore, std::vector<double>{50.0});
  EXPECT_DOUBLE_EQ(monitor->network().downBps, 2000.0);  // 4000 bytes over 2 s
  EXPECT_DOUBLE_EQ(monitor->network().upBps, 200.0);
}

TEST_F(MonitorTest, UnreadCountersAreNotReportedAsZerosAndTheReasonIsLoggedOnce) {
  counters.cpu = {CPUReading{}};  // every read fails, as at the descriptor limit
  counters.memory = std::nullopt;
  counters.readError = "/proc/meminfo: Too many open files";
  std::vector<Monitor::Snapshot> seen;
  monitor->onSnapshot = [&seen](const Monitor::Snapshot& snapshot) { seen.push_back(snapshot); };
  const std::size_t logBefore = readWholeFile(logFilePath()).value_or("").size();
  monitor->start(2.0);
  finishMeasurement();
  loop.advance(2.0);
  finishMeasurement();
  ASSERT_EQ(seen.size(), 2u);
  for (const auto& snapshot : seen) EXPECT_FALSE(snapshot.cpuRead || snapshot.memoryRead);
  const std::string log = readWholeFile(logFilePath()).value_or("").substr(logBefore);
  for (const std::string what : {"CPU load", "Memory"}) {
    const std::string line = what + " could not be read (/proc/meminfo: Too many open files)";
    const auto first = log.find(line);
    EXPECT_NE(first, std::string::npos) << log;
    EXPECT_EQ(log.find(line, first + 1), std::string::npos) << "logged twice: " << line;
  }
}

TEST_F(MonitorTest, TickFiringWhileMeasuringIsDroppedAndTouchesNothing) {
  monitor->start(2.0);
  loop.advance(2.0);  // the first measurement is still in flight
  loop.advance(2.0);
  EXPECT_EQ(monitor->cycle(), 1u);
  EXPECT_EQ(queue.pending(), 2u);  // the boot-time read and the one measurement, nothing behind them
  EXPECT_EQ(counters.cpuReads, 0);

  finishMeasurement();
  EXPECT_EQ(counters.cpuReads, 1);
  loop.advance(2.0);
  EXPECT_EQ(monitor->cycle(), 2u);
  finishMeasurement();
  // The second measurement compares with the first reading: nothing was consumed in between.
  EXPECT_DOUBLE_EQ(monitor->cpu().total, 50.0);
}

TEST_F(MonitorTest, ClosedPanelPublishesOnlyTheCheapFigures) {
  monitor->start(2.0);
  finishMeasurement();
  for (int i = 0; i < 2; ++i) {
    loop.advance(2.0);
    finishMeasurement();
  }
  EXPECT_EQ(monitor->tickCount(), 0u);
  EXPECT_TRUE(monitor->processes().empty());
  EXPECT_TRUE(monitor->fans().empty());
  EXPECT_TRUE(monitor->cpuHistory().empty());
  EXPECT_EQ(monitor->diskTotalBytes(), 0u);
  EXPECT_EQ(heavy.fanReads + heavy.gpuReads + heavy.thermalReads + counters.diskReads, 0);
  EXPECT_EQ(processes.scans, 0);  // nobody asked for processes
  // Alerts and history still get every tick, with temperature absent since nobody wanted it.
  EXPECT_EQ(consumers.alertTemps, (std::vector<std::optional<double>>(3, std::nullopt)));
  EXPECT_NE(monitor->cpu().total, 0);
}

TEST_F(MonitorTest, ClosedPanelReadsTemperatureOnlyWhenAlertsOrHistoryWantIt) {
  consumers.historyWantsTemp = true;
  monitor->start(2.0);
  finishMeasurement();
  EXPECT_EQ(heavy.thermalReads, 1);
  EXPECT_EQ(consumers.historyTemps.back(), 50.0);

  consumers.historyWantsTemp = false;
  loop.advance(2.0);
  finishMeasurement();
  EXPECT_EQ(heavy.thermalReads, 1);
  // The cached temperature still reaches the alerts, but history only records fresh readings.
  EXPECT_EQ(consumers.alertTemps.back(), 50.0);
  EXPECT_EQ(consumers.historyTemps.back(), std::nullopt);

  consumers.alerts = true;
  loop.advance(2.0);
  finishMeasurement();
  EXPECT_EQ(heavy.thermalReads, 2);
}

TEST_F(MonitorTest, ClosedPanelScansProcessesOnlyForTheInsightEngine) {
  consumers.wantsScan = true;
  monitor->start(2.0);
  finishMeasurement();
  EXPECT_EQ(processes.scans, 1);
  EXPECT_EQ(heavy.assertionReads, 1);
  EXPECT_EQ(heavy.energyCalls, 0);  // energy belongs to heavy ticks
  EXPECT_EQ(consumers.calls,
            (std::vector<std::string>{"alerts", "history", "reconcile", "insights+assertions", "pins"}));
  EXPECT_TRUE(monitor->processes().empty());  // handed off, not published
}

TEST_F(MonitorTest, OpeningThePanelForcesAFullScanEvenOnAnEvenCycle) {
  monitor->start(2.0);
  finishMeasurement();
  ASSERT_EQ(monitor->cycle(), 1u);

  monitor->setPublishingPaused(false);
  EXPECT_EQ(monitor->cycle(), 2u);  // measured at once
  finishMeasurement();
  EXPECT_EQ(processes.scans, 1);
  EXPECT_EQ(monitor->processes().size(), 2u);
  EXPECT_EQ(monitor->fans(), std::vector<double>{1200});
  EXPECT_EQ(monitor->diskTotalBytes(), 1000u);
  EXPECT_EQ(monitor->energyRows().size(), 1u);
  EXPECT_EQ(monitor->tickCount(), 1u);

  // Open panel: the process table on odd cycles only.
  loop.advance(2.0);  // cycle 3
  finishMeasurement();
  loop.advance(2.0);  // cycle 4
  finishMeasurement();
  EXPECT_EQ(processes.scans, 2);
  EXPECT_EQ(heavy.fanReads, 3);

  // Setting the same value again changes nothing and measures nothing.
  monitor->setPublishingPaused(false);
  EXPECT_FALSE(monitor->isSampling());
}

TEST_F(MonitorTest, ClosingThePanelKeepsTheLastPublishedHeavyValues) {
  heavy.gpu = GPUSample{30.0, std::nullopt, std::nullopt, std::nullopt, 10};
  monitor->setPublishingPaused(false);
  monitor->start(2.0);
  finishMeasurement();
  ASSERT_TRUE(monitor->gpu().has_value());

  monitor->setPublishingPaused(true);
  heavy.fans = {9999};
  heavy.gpu.reset();
  loop.advance(2.0);
  finishMeasurement();
  EXPECT_EQ(monitor->fans(), std::vector<double>{1200});
  EXPECT_EQ(monitor->gpu()->deviceUtil, 30.0);
  EXPECT_EQ(monitor->processes().size(), 2u);
  EXPECT_EQ(monitor->tickCount(), 1u);
}

TEST_F(MonitorTest, ApplyPublishesAndHandsOffInOrder) {
  monitor->setPublishingPaused(false);
  double cpuSeenByOnTick = -1;
  monitor->onTick = [&] {
    cpuSeenByOnTick = monitor->cpu().total;
    consumers.calls.push_back("onTick");
  };
  (void)monitor->processes.subscribe([&](const auto&) { consumers.calls.push_back("publish processes"); });
  auto snap = snapshotWith(42.0);
  snap.processesScanned = true;
  monitor->apply(snap);
  EXPECT_EQ(cpuSeenByOnTick, 42.0);
  EXPECT_EQ(consumers.calls, (std::vector<std::string>{"onTick", "alerts", "history", "reconcile", "insights",
                                                       "pins", "publish processes", "prune"}));
}

TEST_F(MonitorTest, LiveHistoriesKeepTheNewestNinetyValues) {
  monitor->setPublishingPaused(false);
  for (int i = 1; i <= 91; ++i) {
    auto snap = snapshotWith(i);
    snap.network.downBps = 2048;
    if (i % 2 == 0) snap.thermal.cpuC = 40.0 + i;
    monitor->apply(snap);
  }
  ASSERT_EQ(monitor->cpuHistory().size(), 90u);
  EXPECT_EQ(monitor->cpuHistory().front(), 2.0);
  EXPECT_EQ(monitor->cpuHistory().back(), 91.0);
  EXPECT_EQ(monitor->memHistory().back(), 50.0);
  EXPECT_EQ(monitor->downHistory().back(), 2.0);  // KiB/s
  // An absent temperature adds no point; it is never recorded as 0.
  EXPECT_EQ(monitor->tempHistory().size(), 45u);
  EXPECT_EQ(monitor->tempHistory().back(), 130.0);

  // The GPU history grows only on ticks that read the GPU; the last reading stays published.
  auto gpu = snapshotWith(1);
  gpu.gpuCollected = true;
  gpu.gpu = GPUSample{12.5, std::nullopt, std::nullopt, std::nullopt, std::nullopt};
  monitor->apply(gpu);
  monitor->apply(snapshotWith(1));
  EXPECT_EQ(monitor->gpuHistory(), std::vector<double>{12.5});
  EXPECT_EQ(monitor->gpu()->deviceUtil, 12.5);
}

TEST_F(MonitorTest, IntervalChangesUnderTheThresholdAreIgnored) {
  monitor->start(2.0);
  finishMeasurement();
  monitor->setInterval(2.005);
  EXPECT_FALSE(monitor->isSampling());
  EXPECT_EQ(monitor->refreshInterval(), 2.0);

  monitor->setInterval(2.02);
  EXPECT_TRUE(monitor->isSampling());  // restarted and measuring at once
  EXPECT_EQ(monitor->refreshInterval(), 2.02);
  EXPECT_EQ(loop.activeTimers(), 1u);  // the old timer is gone
  finishMeasurement();

  monitor->stop();
  EXPECT_FALSE(monitor->isRunning());
  loop.advance(10);
  EXPECT_EQ(monitor->cycle(), 2u);
}

TEST_F(MonitorTest, AMeasurementOutlivingItsMonitorDoesNothing) {
  monitor->start(2.0);
  monitor.reset();
  EXPECT_EQ(queue.runAll(), 2);
  EXPECT_EQ(counters.cpuReads, 0);
  EXPECT_EQ(loop.runUntilIdle(), 0);
}

}  // namespace
}  // namespace quillmark
