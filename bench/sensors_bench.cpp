// The Linux heavy read (fans, temperatures, battery, GPU) on a fixture tree of 40 sensors, 4 fans,
// a battery and an amdgpu, against a floor that only preads the same files on kept descriptors.
// The reader should stay within 1.3x of its floor; the ratio is printed by the last case.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "sensors/linux/hwmon_discovery.h"
#include "sensors/linux/linux_heavy_readers.h"
#include "sensors/linux/testing/sensor_fixtures.h"

namespace quillmark {
namespace {

constexpr int kSensors = 40;
constexpr int kFans = 4;

const testing::TempTree& tree() {
  static testing::TempTree instance;
  static const bool built = (testing::buildLargeMachine(instance, kSensors, kFans), true);
  (void)built;
  return instance;
}

// Every file the heavy readers read per tick, found the way they find them.
std::vector<std::string> filesRead(const std::string& root) {
  std::vector<std::string> files;
  const HwmonInventory inventory = discoverHwmon(root);
  std::set<std::string> statuses;  // one per chip, read once per pass
  for (const auto& c : inventory.temps) {
    files.push_back(c.inputPath);
    if (!c.runtimeStatusPath.empty()) statuses.insert(c.runtimeStatusPath);
  }
  files.insert(files.end(), statuses.begin(), statuses.end());
  for (const auto& c : inventory.fans) files.push_back(c.inputPath);
  namespace fs = std::filesystem;
  for (const auto& supply : fs::directory_iterator(root + "/sys/class/power_supply")) {
    for (const char* name :
         {"status", "capacity", "cycle_count", "energy_now", "energy_full", "energy_full_design",
          "charge_now", "charge_full", "charge_full_design", "power_now", "current_now", "voltage_now",
          "temp", "charge_control_end_threshold", "online"}) {
      if (fs::exists(supply.path() / name)) files.push_back((supply.path() / name).string());
    }
  }
  const std::string device = root + "/sys/class/drm/card1/device/";
  for (const char* name : {"power/runtime_status", "gpu_busy_percent", "mem_info_vram_used",
                           "mem_info_vram_total", "hwmon/hwmon9/temp1_input"}) {
    files.push_back(device + name);
  }
  return files;
}

void BM_HeavyReadFloor(benchmark::State& state) {
  std::vector<int> fds;
  for (const auto& file : filesRead(tree().root())) fds.push_back(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  char buffer[4096];
  for (auto _ : state) {
    for (int fd : fds) benchmark::DoNotOptimize(::pread(fd, buffer, sizeof buffer, 0));
  }
  state.counters["files"] = static_cast<double>(fds.size());
  for (int fd : fds) ::close(fd);
}
BENCHMARK(BM_HeavyReadFloor)->Unit(benchmark::kMicrosecond);

void BM_LinuxHeavyRead(benchmark::State& state) {
  SensorInventory inventory;
  LinuxHeavyReaders::Options options;
  options.root = tree().root();
  options.now = [] { return 0.0; };  // no once-a-minute rediscovery inside the measurement
  options.askLogind = false;
  LinuxHeavyReaders readers(inventory, options);
  readers.setSurfaceSensor("chip1/temp3");
  for (auto _ : state) {
    benchmark::DoNotOptimize(readers.readFanSpeeds());
    benchmark::DoNotOptimize(readers.readThermal());
    benchmark::DoNotOptimize(readers.readBattery());
    benchmark::DoNotOptimize(readers.readGPU());
  }
  state.counters["sensors"] = static_cast<double>(inventory.sensors().size());
  // Discoveries are not part of the steady state; more than one of each means a file kept failing.
  state.counters["walks"] =
      readers.discoveries().hwmon + readers.discoveries().power + readers.discoveries().gpu;
}
BENCHMARK(BM_LinuxHeavyRead)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmark

BENCHMARK_MAIN();
