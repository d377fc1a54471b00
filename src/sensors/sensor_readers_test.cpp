// The portable halves of the macOS readers: what they make of the values the system handed over.
#include <gtest/gtest.h>

#include "sensors/assertions_reader.h"
#include "sensors/battery_reader.h"
#include "sensors/energy_reader.h"
#include "sensors/gpu_reader.h"

namespace quillmark {
namespace {

TEST(BatteryReader, PowerIsAMagnitudeAndMissingFlagsAreFalse) {
  BatteryProperties p;
  p.currentCapacity = 76;
  p.voltage = 12000;
  p.amperage = -1500;
  BatterySample s = BatteryReader::sampleFrom(p);
  EXPECT_EQ(s.percentage, 76);
  EXPECT_EQ(s.powerWatts, 18.0);
  EXPECT_FALSE(s.isCharging || s.isCharged || s.externalConnected);
  EXPECT_EQ(batteryStatusKey(s), "battery.status.onBattery");
  p.amperage = 1500;
  EXPECT_EQ(BatteryReader::sampleFrom(p).powerWatts, 18.0);
  p.amperage.reset();
  EXPECT_EQ(BatteryReader::sampleFrom(p).powerWatts, std::nullopt);
  EXPECT_EQ(BatteryReader::sampleFrom({}), BatterySample{});
}

TEST(BatteryReader, StatusPrefersChargingThenChargedThenMains) {
  BatterySample s;
  s.isCharging = s.isCharged = s.externalConnected = true;
  EXPECT_EQ(batteryStatusKey(s), "battery.status.charging");
  s.isCharging = false;
  EXPECT_EQ(batteryStatusKey(s), "battery.status.charged");
  s.isCharged = false;
  EXPECT_EQ(batteryStatusKey(s), "battery.status.notCharging");
}

TEST(GPUReader, ClampsUtilisationsAndNeedsTheDeviceFigure) {
  GPUStatistics stats;
  stats.deviceUtilization = 140;
  stats.rendererUtilization = -3;
  stats.allocSystemMemory = 1u << 30;
  const auto sample = GPUReader::sampleFrom(stats, 10);
  ASSERT_TRUE(sample);
  EXPECT_EQ(sample->deviceUtil, 100.0);
  EXPECT_EQ(sample->rendererUtil, 0.0);
  EXPECT_EQ(sample->tilerUtil, std::nullopt);
  EXPECT_EQ(sample->allocBytes, 1u << 30);
  EXPECT_EQ(sample->coreCount, 10);
  stats.deviceUtilization.reset();
  EXPECT_EQ(GPUReader::sampleFrom(stats, 10), std::nullopt);
}

TEST(AssertionsReader, ListsBlockingTypesUnlessASystemDaemonHoldsThem) {
  EXPECT_TRUE(AssertionsReader::counts("PreventUserIdleDisplaySleep", "Safari"));
  EXPECT_TRUE(AssertionsReader::counts("NoIdleSleepAssertion", std::nullopt));
  EXPECT_FALSE(AssertionsReader::counts("PreventUserIdleSystemSleep", "coreaudiod"));
  EXPECT_FALSE(AssertionsReader::counts("PreventDiskIdle", "Safari"));
  EXPECT_FALSE(AssertionsReader::counts("preventsystemsleep", "Safari"));  // exact names only
}

TEST(EnergyTracker, WattsFromCounterDeltasAndForgetsVanishedCoalitions) {
  EnergyTracker tracker;
  const std::vector<ProcessSample> members = {{812, "helper", 0, 0}, {455, "App", 0, 0}, {900, "x", 0, 0}};
  auto reading = [&](std::uint64_t energy) { return std::vector<CoalitionReading>{{7, members, energy}}; };
  auto rows = tracker.rows(reading(1'000'000'000), 100.0);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0], (ProcessSample{455, "App", 0.0, 1'000'000'000}));  // first sight: 0 W
  EXPECT_EQ(tracker.rows(reading(4'000'000'000), 102.0)[0].cpuPercent, 1.5);
  EXPECT_EQ(tracker.rows(reading(5'000'000'000), 102.4)[0].cpuPercent, 0.0);  // too close...
  EXPECT_EQ(tracker.rows(reading(6'000'000'000), 103.4)[0].cpuPercent, 1.0);  // ...but it moved on
  EXPECT_EQ(tracker.rows(reading(1'000), 105.4)[0].cpuPercent, 0.0);          // went backwards
  EXPECT_TRUE(tracker.rows({{0, members, 5}, {9, members, std::nullopt}}, 107.0).empty());
  EXPECT_EQ(tracker.rows(reading(3'000'000'000), 109.0)[0].cpuPercent, 0.0);  // 7 was forgotten
}

}  // namespace
}  // namespace quillmark
