// The battery, GPU and assertion readers compiled for Linux against the stub SDK, reading a fake
// IO registry built from reference-counted fake CF objects (so leaks and over-releases show).
#include <gtest/gtest.h>

#include "sensors/assertions_reader.h"
#include "sensors/battery_reader.h"
#include "sensors/gpu_reader.h"
#include "sensors/testing/fake_core_foundation.h"
#include "sensors/testing/fake_iokit.h"

namespace quillmark {
namespace {

using fake_iokit::iokit;
namespace cf = fake_cf;

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override { fake_iokit::reset(); }
  void TearDown() override {
    fake_iokit::reset();
    EXPECT_EQ(cf::liveObjects(), 0) << "a CF object was leaked";
  }
};

TEST_F(RegistryTest, BatteryFromTheSmartBatteryEntry) {
  EXPECT_EQ(BatteryReader::read(), std::nullopt);  // a desktop Mac

  iokit().registry["AppleSmartBattery"] =
      cf::object({{"CurrentCapacity", cf::integer(76)},
                  {"IsCharging", cf::boolean(false)},
                  {"ExternalConnected", cf::boolean(true)},
                  {"CycleCount", cf::string("many")},  // ill-typed: absent
                  {"MaxCapacity", cf::integer(91)},
                  {"Voltage", cf::integer(12000)},
                  {"Amperage", cf::integer(-1500)}});
  const auto battery = BatteryReader::read();
  ASSERT_TRUE(battery);
  EXPECT_EQ(battery->percentage, 76);
  EXPECT_EQ(battery->cycleCount, std::nullopt);
  EXPECT_EQ(battery->healthPercent, 91);
  EXPECT_EQ(battery->powerWatts, 18.0);
  EXPECT_TRUE(battery->externalConnected);
  EXPECT_FALSE(battery->isCharged);
  EXPECT_EQ(iokit().servicesReleased, 1);

  CFRelease(iokit().registry["AppleSmartBattery"]);
  iokit().registry["AppleSmartBattery"] = nullptr;  // properties unreadable
  EXPECT_EQ(BatteryReader::read(), std::nullopt);
  EXPECT_EQ(iokit().servicesReleased, 2);
}

// The reader keeps its service for the process, so its whole life is one test.
TEST_F(RegistryTest, GPUKeepsItsServiceAndReadsTheCoreCountOnce) {
  EXPECT_EQ(GPUReader::read(), std::nullopt);
  EXPECT_EQ(GPUReader::read(), std::nullopt);
  EXPECT_EQ(iokit().lookups.size(), 2u);  // no accelerator: searched for on every call

  iokit().registry["IOAccelerator"] =
      cf::object({{"PerformanceStatistics", cf::object({{"Device Utilization %", cf::integer(140)},
                                                        {"Renderer Utilization %", cf::integer(-3)},
                                                        {"Alloc system memory", cf::integer(1 << 30)}})}});
  iokit().inherited["IOAccelerator"] = cf::object({{"gpu-core-count", cf::integer(10)}});
  for (int i = 0; i < 2; ++i) {
    const auto gpu = GPUReader::read();
    ASSERT_TRUE(gpu);
    EXPECT_EQ(gpu->deviceUtil, 100.0);
    EXPECT_EQ(gpu->rendererUtil, 0.0);
    EXPECT_EQ(gpu->tilerUtil, std::nullopt);
    EXPECT_EQ(gpu->allocBytes, 1u << 30);
    EXPECT_EQ(gpu->coreCount, 10);
  }
  EXPECT_EQ(iokit().lookups.size(), 3u);
  EXPECT_EQ(iokit().searchOptions, std::vector<IOOptionBits>{3});
  EXPECT_EQ(iokit().servicesReleased, 0);

  CFRelease(iokit().registry["IOAccelerator"]);
  iokit().registry["IOAccelerator"] = cf::object({});  // statistics gone: drop the service
  EXPECT_EQ(GPUReader::read(), std::nullopt);
  EXPECT_EQ(iokit().servicesReleased, 1);
  EXPECT_EQ(GPUReader::read(), std::nullopt);
  EXPECT_EQ(iokit().lookups.size(), 4u);
}

TEST_F(RegistryTest, AssertionsSkipNoiseAndMalformedEntriesAndKeepDuplicates) {
  const auto assertion = [](const char* type, const char* process) {
    return process ? cf::object({{"AssertType", cf::string(type)}, {"Process Name", cf::string(process)}})
                   : cf::object({{"AssertType", cf::string(type)}});
  };
  iokit().assertions = cf::dictionary({
      {cf::integer(88), cf::array({assertion("PreventUserIdleSystemSleep", "coreaudiod")})},
      {cf::integer(501), cf::array({assertion("PreventUserIdleDisplaySleep", "Keynote"), cf::boolean(false),
                                    cf::object({}), assertion("PreventDiskIdle", "Keynote"),
                                    assertion("PreventUserIdleDisplaySleep", "Keynote")})},
      {cf::integer(777), cf::array({assertion("NoIdleSleepAssertion", nullptr)})},
      {cf::string("999"), cf::array({assertion("PreventSystemSleep", "x")})},  // not a pid
  });
  const AssertionMap expected = {
      {501, {"PreventUserIdleDisplaySleep", "PreventUserIdleDisplaySleep"}},
      {777, {"NoIdleSleepAssertion"}},
  };
  EXPECT_EQ(AssertionsReader::readSleepBlockers(), expected);
  iokit().assertionsResult = kIOReturnError;
  EXPECT_TRUE(AssertionsReader::readSleepBlockers().empty());
}

}  // namespace
}  // namespace quillmark
