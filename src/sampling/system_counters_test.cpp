#include "sampling/system_counters.h"

#include <gtest/gtest.h>

namespace quillmark {
namespace {

using namespace SystemCounterMath;

TEST(CpuUsageTest, BusyShareOfTheTicksThatPassed) {
  const CPUTicks before{100, 50, 800, 50};
  EXPECT_DOUBLE_EQ(cpuUsage(before, {130, 60, 850, 60}), 50.0);  // 50 busy of 100
  EXPECT_DOUBLE_EQ(cpuUsage(before, before), 0.0);               // no tick passed: 0, not NaN
  EXPECT_DOUBLE_EQ(cpuUsage(before, {200, 50, 800, 50}), 100.0);
}

TEST(CpuUsageTest, ACounterThatWentBackwardsContributesNothing) {
  EXPECT_EQ(tickDelta(10, 4), 0.0);
  EXPECT_EQ(tickDelta(4, 10), 6.0);
  // idle went backwards: the load comes from the other three counters alone.
  EXPECT_DOUBLE_EQ(cpuUsage({100, 0, 800, 0}, {150, 0, 700, 0}), 100.0);
  // user went backwards, idle moved: only idle counts.
  EXPECT_DOUBLE_EQ(cpuUsage({100, 0, 800, 0}, {90, 0, 900, 0}), 0.0);
  // 64-bit counters far beyond 32 bits still subtract exactly.
  const std::uint64_t big = 1ULL << 40;
  EXPECT_DOUBLE_EQ(cpuUsage({big, 0, big, 0}, {big + 25, 0, big + 75, 0}), 25.0);
}

TEST(PerCoreUsageTest, PairsProcessorsByNumberAndGivesUpWhenTheSetChanges) {
  const std::vector<CoreTicks> before{{0, {0, 0, 100, 0}}, {1, {0, 0, 100, 0}}};
  const std::vector<CoreTicks> after{{0, {50, 0, 150, 0}}, {1, {0, 0, 200, 0}}};
  EXPECT_EQ(perCoreUsage(before, after), (std::vector<double>{50.0, 0.0}));
  // A processor went offline: no loads for this tick rather than misattributed ones.
  EXPECT_TRUE(perCoreUsage(before, {after[0]}).empty());
  // Same count but a different processor (cpu1 off, cpu2 on).
  EXPECT_TRUE(perCoreUsage(before, {after[0], {2, {0, 0, 300, 0}}}).empty());
  EXPECT_TRUE(perCoreUsage({}, after).empty());
}

TEST(SystemCounterTrackerTest, FirstTickAndFailedReadsReportZeroAndKeepState) {
  SystemCounterTracker tracker;
  const CPUReading first{CPUTicks{0, 0, 100, 0}, {{0, {0, 0, 100, 0}}}};
  const CPUReading second{CPUTicks{50, 0, 150, 0}, {{0, {50, 0, 150, 0}}}};
  EXPECT_EQ(tracker.cpu(first).total, 0.0);

  // A failed whole-machine read keeps prevCPU; a failed per-core read empties prevPerCore.
  const CPUSample failed = tracker.cpu(CPUReading{});
  EXPECT_EQ(failed.total, 0.0);
  EXPECT_TRUE(failed.perCore.empty());
  EXPECT_EQ(tracker.prevCPU, first.total);
  EXPECT_TRUE(tracker.prevPerCore.empty());

  const CPUSample recovered = tracker.cpu(second);
  EXPECT_DOUBLE_EQ(recovered.total, 50.0);
  EXPECT_TRUE(recovered.perCore.empty());  // one tick without per-core history
  EXPECT_EQ(tracker.cpu(second).perCore, std::vector<double>{0.0});
}

NetCounters net(std::uint64_t en0Down, std::uint64_t en0Up) { return {{"en0", en0Down, en0Up}}; }

TEST(NetRatesTest, RatesNeedAPreviousReadingAndMoreThanATenthOfASecond) {
  SystemCounterTracker tracker;
  EXPECT_EQ(tracker.network(net(1000, 1000), 0), NetSample{});
  EXPECT_EQ(tracker.network(net(3000, 1500), 2.0), (NetSample{1000, 250}));
  EXPECT_EQ(tracker.network(net(3100, 1600), 0.1), NetSample{});  // too soon to divide by
  // A failed read reports 0 and keeps the previous counters for the next tick.
  EXPECT_EQ(tracker.network(std::nullopt, 2.0), NetSample{});
  EXPECT_EQ(tracker.prevNet, net(3100, 1600));
  EXPECT_EQ(tracker.network(net(5100, 1600), 2.0), (NetSample{1000, 0}));
}

TEST(NetRatesTest, OnlyInterfacesCountedAtBothEndsOfATickAddTheirIncrease) {
  SystemCounterTracker tracker;
  (void)tracker.network(NetCounters{{"en0", 1000, 100}}, 0);
  // Wi-Fi reconnects with its lifetime totals: only en0's 300 bytes flowed in these two seconds.
  EXPECT_EQ(tracker.network(NetCounters{{"en0", 1300, 400}, {"wlan0", 1'800'000'000, 900'000}}, 2.0),
            (NetSample{150, 150}));
  // Listed in another order, and en0 gone: wlan0 still reports its own traffic.
  EXPECT_EQ(tracker.network(NetCounters{{"wlan0", 1'800'000'200, 900'100}}, 2.0), (NetSample{100, 50}));
  // A counter that went backwards (reset, wrapped) adds nothing in that direction, for one tick.
  (void)tracker.network(NetCounters{{"wlan0", 1'800'000'200, 900'100}, {"en0", 5000, 500}}, 2.0);
  EXPECT_EQ(tracker.network(NetCounters{{"wlan0", 1'800'000'400, 50}, {"en0", 5200, 700}}, 2.0),
            (NetSample{200, 100}));
  EXPECT_EQ(tracker.network(NetCounters{{"wlan0", 1'800'000'400, 250}, {"en0", 5200, 700}}, 2.0),
            (NetSample{0, 100}));
}

TEST(MemorySampleTest, UsedAndFractionAndCapping) {
  EXPECT_EQ(MemorySample{}.usageFraction(), 0.0);  // total 0
  const MemorySample over{100, 80, 30, 10, 0, 0};
  EXPECT_EQ(over.used(), 120u);
  EXPECT_EQ(over.usageFraction(), 1.0);
  const MemorySample half{1000, 300, 150, 50, 400, 100};
  EXPECT_DOUBLE_EQ(half.usageFraction(), 0.5);  // cached and free are never used

  const MemorySample capped = capToTotal(MemorySample{100, 500, 20, 30, 400, 1000});
  EXPECT_EQ(capped, (MemorySample{100, 100, 20, 30, 100, 100}));
}

}  // namespace
}  // namespace quillmark
