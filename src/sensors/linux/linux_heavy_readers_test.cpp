// The Linux sensor readers on fixture trees modelled on real machines, and on damaged files.
#include "sensors/linux/linux_heavy_readers.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "sensors/linux/sysfs_text.h"
#include "sensors/linux/testing/sensor_fixtures.h"

namespace quillmark {
namespace {

using testing::TempTree;

struct Machine {
  TempTree tree;
  SensorInventory inventory;
  double clock = 1000;
  std::unique_ptr<LinuxHeavyReaders> readers;

  explicit Machine(void (*build)(const TempTree&) = nullptr) {
    if (build) build(tree);
    LinuxHeavyReaders::Options options;
    options.root = tree.root();
    options.nvmlPath = QM_FAKE_NVML_PATH;
    options.now = [this] { return clock; };
    options.askLogind = false;
    readers = std::make_unique<LinuxHeavyReaders>(inventory, options);
  }
};

TEST(SysfsText, RejectsDamagedValues) {
  EXPECT_EQ(SysfsText::milliCelsius("45250\n"), 45.25);
  EXPECT_EQ(SysfsText::milliCelsius("-5000"), -5.0);
  for (const char* bad : {"", "\n", "-ENODATA", "9223372036854775808", "45 C", "127000000"}) {
    EXPECT_EQ(SysfsText::milliCelsius(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(SysfsText::rpm("0\n"), 0.0);
  EXPECT_EQ(SysfsText::rpm("-1"), std::nullopt);
}

TEST(LinuxHeavyReaders, ThinkPad) {
  Machine m(testing::buildThinkPad);
  m.readers->setSurfaceSensor("thinkpad/temp3");
  const ThermalSample thermal = m.readers->readThermal();
  EXPECT_EQ(thermal.cpuC, 61.0);  // the package, though Core 1 is hotter
  EXPECT_EQ(thermal.gpuC, std::nullopt);
  EXPECT_EQ(thermal.batteryC, std::nullopt);
  EXPECT_EQ(thermal.surfaceC, 36.0);
  EXPECT_EQ(m.readers->readFanSpeeds(), std::vector<double>{2900});

  const auto sensors = m.inventory.sensors();
  ASSERT_EQ(sensors.size(), 13u);  // acpitz 1, thinkpad 8, coretemp 3, nvme 1
  EXPECT_EQ(sensors[0], (SensorListing{"acpitz/temp1", "acpitz", "temp1", 48.0}));
  EXPECT_EQ(sensors.back(), (SensorListing{"nvme/temp1", "nvme", "Composite", 40.85}));

  const auto battery = m.readers->readBattery();
  ASSERT_TRUE(battery);
  EXPECT_EQ(battery->percentage, 80);
  EXPECT_EQ(battery->healthPercent, 88);  // 50 of 57 Wh
  EXPECT_EQ(battery->cycleCount, 312);
  EXPECT_EQ(battery->powerWatts, 9.5);
  EXPECT_FALSE(battery->isCharging || battery->isCharged || battery->externalConnected);
  EXPECT_EQ(m.readers->readGPU(), std::nullopt);

  m.readers->setSurfaceSensor("thinkpad/temp99");
  EXPECT_EQ(m.readers->readThermal().surfaceC, std::nullopt);
}

TEST(LinuxHeavyReaders, AmdLaptop) {
  Machine m(testing::buildAmdLaptop);
  const ThermalSample thermal = m.readers->readThermal();
  EXPECT_EQ(thermal.cpuC, 70.125);  // Tctl, since there is no Tdie; never Tccd1
  EXPECT_EQ(thermal.gpuC, 52.0);
  EXPECT_EQ(thermal.batteryC, 31.2);  // power_supply temp, tenths of a degree
  const auto battery = m.readers->readBattery();
  ASSERT_TRUE(battery);
  EXPECT_EQ(battery->percentage, 55);  // capacity, not the mouse's 5
  EXPECT_EQ(battery->healthPercent, 90);
  EXPECT_EQ(battery->cycleCount, std::nullopt);  // 0: not counted
  EXPECT_EQ(battery->powerWatts, 18.0);          // 1.5 A at 12 V
  EXPECT_TRUE(battery->isCharging && battery->externalConnected);
  const auto gpu = m.readers->readGPU();
  ASSERT_TRUE(gpu);
  EXPECT_EQ(gpu->deviceUtil, 37.0);
  EXPECT_EQ(gpu->allocBytes, 536870912u);
  ASSERT_EQ(m.inventory.gpus().size(), 1u);  // the eDP connector is not a card
  EXPECT_EQ(m.inventory.gpus()[0].driver, "amdgpu");
  EXPECT_EQ(m.inventory.gpus()[0].temperatureC, 52.0);

  m.tree.write("sys/class/drm/card0/device/power/runtime_status", "suspended\n");
  m.tree.write("sys/class/drm/card0/device/gpu_busy_percent", "99\n");
  EXPECT_EQ(m.readers->readGPU(), std::nullopt);  // asleep: listed, not read
  EXPECT_TRUE(m.inventory.gpus()[0].suspended);
  EXPECT_EQ(m.readers->readThermal().gpuC, std::nullopt);  // nor its hwmon sensor
  EXPECT_EQ(m.readers->discoveries().hwmon, 1);            // and sleeping is not a lost file
}

TEST(LinuxHeavyReaders, NvidiaDesktopThroughNvml) {
  ::setenv("QM_FAKE_NVML", "NVIDIA Fake A,12,1000,8000,40,0;NVIDIA Fake B,63,3000,24000,58,16384", 1);
  Machine m(testing::buildNvidiaDesktop);
  EXPECT_EQ(m.readers->readThermal().cpuC, 43.0);  // Tdie over Tctl
  EXPECT_EQ(m.readers->readFanSpeeds(), (std::vector<double>{800, 0, 1200}));
  EXPECT_EQ(m.readers->readBattery(), std::nullopt);
  const auto gpu = m.readers->readGPU();
  ASSERT_TRUE(gpu);
  EXPECT_EQ(gpu->deviceUtil, 63.0);  // the busier of the two
  EXPECT_EQ(gpu->allocBytes, 3000u);
  EXPECT_EQ(gpu->coreCount, 16384);
  const auto gpus = m.inventory.gpus();
  ASSERT_EQ(gpus.size(), 2u);
  EXPECT_EQ(gpus[0].name, "NVIDIA Fake A");
  EXPECT_EQ(gpus[0].coreCount, std::nullopt);
  EXPECT_EQ(m.readers->readThermal().gpuC, 58.0);  // NVML's temperature from the last GPU read

  m.tree.write("sys/class/drm/card0/device/power/runtime_status", "suspended\n");
  EXPECT_EQ(m.readers->readGPU(), std::nullopt);
  ASSERT_EQ(m.inventory.gpus().size(), 1u);
  EXPECT_TRUE(m.inventory.gpus()[0].suspended);
  ::unsetenv("QM_FAKE_NVML");
}

TEST(NvmlLibrary, AbsentLibraryOrFailedInitMeansNoGPU) {
  NvmlLibrary missing("/nonexistent/libnvidia-ml.so.1");
  EXPECT_FALSE(missing.load());
  EXPECT_TRUE(missing.read().empty());
  ::setenv("QM_FAKE_NVML_INIT_FAILS", "1", 1);
  NvmlLibrary failing(QM_FAKE_NVML_PATH);
  EXPECT_FALSE(failing.load());
  EXPECT_FALSE(failing.load());  // not tried again
  EXPECT_TRUE(failing.read().empty());
  ::unsetenv("QM_FAKE_NVML_INIT_FAILS");
}

TEST(LinuxHeavyReaders, MachineWithoutSensors) {
  Machine m;
  EXPECT_EQ(m.readers->readThermal(), ThermalSample{});
  EXPECT_TRUE(m.readers->readFanSpeeds().empty());
  EXPECT_EQ(m.readers->readBattery(), std::nullopt);
  EXPECT_EQ(m.readers->readGPU(), std::nullopt);
  EXPECT_TRUE(m.readers->energyRows({{100, "x", 50, 0}}).empty());
  EXPECT_FALSE(m.inventory.energyAvailable());
}

TEST(LinuxHeavyReaders, DamagedFilesAreAbsentNotWrong) {
  Machine m;
  const std::string hwmon = "sys/class/hwmon/hwmon0/";
  m.tree.write(hwmon + "name", "coretemp\n");
  m.tree.write(hwmon + "temp1_label", "Package id 0\n");
  m.tree.write(hwmon + "temp1_input", "");
  m.tree.write(hwmon + "temp2_input", "-ENODATA\n");
  m.tree.write(hwmon + "temp3_input", "9223372036854775808\n");
  m.tree.makeDirectory(hwmon + "temp4_input");      // EISDIR on read
  m.tree.write(hwmon + "temp5_label", "Core 4\n");  // no input at all
  m.tree.write(hwmon + "temp6_input", "55000\n");
  m.tree.write(hwmon + "fan1_input", "lots\n");
  m.tree.write("sys/class/power_supply/BAT0/type", "Battery\n");
  m.tree.write("sys/class/power_supply/BAT0/capacity", "-ENODATA\n");
  m.tree.write("sys/class/power_supply/BAT0/power_now", "");
  EXPECT_EQ(m.readers->readThermal().cpuC, 55.0);  // the one core that reads
  EXPECT_EQ(m.inventory.sensors().size(), 5u);
  EXPECT_TRUE(m.readers->readFanSpeeds().empty());
  const auto battery = m.readers->readBattery();
  ASSERT_TRUE(battery);  // a battery exists, it just says little
  EXPECT_EQ(battery->percentage, std::nullopt);
  EXPECT_EQ(battery->powerWatts, std::nullopt);
}

TEST(LinuxHeavyReaders, RediscoversWhenAFileFailsAndOnceAMinute) {
  Machine m(testing::buildThinkPad);
  ASSERT_EQ(m.readers->readFanSpeeds().size(), 1u);
  EXPECT_EQ(m.readers->discoveries().hwmon, 1);
  m.tree.write("sys/class/hwmon/hwmon2/fan1_input", "");  // thinkpad_acpi unloading
  EXPECT_TRUE(m.readers->readFanSpeeds().empty());
  m.tree.write("sys/class/hwmon/hwmon2/fan1_input", "3100\n");
  EXPECT_EQ(m.readers->readFanSpeeds(), std::vector<double>{3100});
  EXPECT_EQ(m.readers->discoveries().hwmon, 2);
  EXPECT_EQ(m.readers->discoveries().power, 1);  // only the part that failed

  m.tree.write("sys/class/hwmon/hwmon7/name", "nct6798\n");
  m.tree.write("sys/class/hwmon/hwmon7/fan1_input", "700\n");
  m.clock += 59;
  EXPECT_EQ(m.readers->readFanSpeeds().size(), 1u);
  m.clock += 1;
  EXPECT_EQ(m.readers->readFanSpeeds().size(), 2u);
  EXPECT_EQ(m.readers->discoveries().power, 2);
}

TEST(RaplEnergy, SplitsPackagePowerByCPUShareAndUnwraps) {
  TempTree tree;
  const std::string zone = "sys/class/powercap/intel-rapl:0/";
  tree.write(zone + "name", "package-0\n");
  tree.write(zone + "max_energy_range_uj", "262143328850\n");
  tree.write(zone + "energy_uj", "1000000\n");
  tree.write("sys/class/powercap/intel-rapl:0:0/name", "core\n");
  tree.write("sys/class/powercap/intel-rapl:0:0/energy_uj", "5\n");
  tree.write("sys/class/powercap/intel-rapl:1/name", "psys\n");
  tree.write("sys/class/powercap/intel-rapl:1/energy_uj", "5\n");
  double clock = 0;
  RaplEnergy energy(tree.root(), [&] { return clock; });
  energy.discover();
  ASSERT_TRUE(energy.available());
  bool lost = false;
  const std::vector<ProcessSample> processes = {{10, "a", 30, 0}, {11, "b", 10, 0}, {12, "idle", 0, 0}};
  auto rows = energy.rows(processes, lost);
  ASSERT_EQ(rows.size(), 2u);          // a process that used no CPU has no row
  EXPECT_EQ(rows[0].cpuPercent, 0.0);  // first sight

  clock = 2;
  tree.write(zone + "energy_uj", "9000000\n");  // 8 J in 2 s: 4 W
  rows = energy.rows(processes, lost);
  EXPECT_DOUBLE_EQ(rows[0].cpuPercent, 3.0);
  EXPECT_DOUBLE_EQ(rows[1].cpuPercent, 1.0);
  EXPECT_EQ(rows[0].memoryBytes, 6'000'000'000u);  // nanojoules

  clock = 4;
  tree.write(zone + "energy_uj", "3000000\n");  // wrapped past 262143328850
  rows = energy.rows(processes, lost);
  EXPECT_NEAR(rows[0].cpuPercent + rows[1].cpuPercent, (262143328850.0 - 9000000 + 3000000 + 1) / 1e6 / 2,
              1e-6);

  clock = 4.4;  // too close: 0 W
  tree.write(zone + "energy_uj", "4000000\n");
  EXPECT_EQ(energy.rows(processes, lost)[0].cpuPercent, 0.0);
  EXPECT_FALSE(lost);

  tree.remove(zone + "energy_uj");
  tree.makeDirectory(zone + "energy_uj");  // unreadable counter: no zone, no rows
  energy.discover();
  EXPECT_FALSE(energy.available());
}

TEST(LogindInhibitors, OnlyBlockingSleepAndIdleCount) {
  const std::vector<Inhibitor> list = {
      {"sleep", "player", "playing", "block", 1000, 4242},
      {"shutdown:sleep", "NetworkManager", "", "delay", 0, 700},
      {"idle:handle-lid-switch:sleep", "player", "", "block", 1000, 4242},
      {"handle-power-key", "gsd", "", "block", 1000, 800},
      {"sleep", "ghost", "", "block", 0, 0},
  };
  const AssertionMap expected = {
      {4242, {"PreventSystemSleep", "PreventUserIdleSystemSleep", "PreventSystemSleep"}}};
  EXPECT_EQ(inhibitorsToAssertions(list), expected);
}

}  // namespace
}  // namespace quillmark
