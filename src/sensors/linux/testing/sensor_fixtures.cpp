#include "sensors/linux/testing/sensor_fixtures.h"

namespace quillmark::testing {
namespace {

void chip(const TempTree& tree, const std::string& hwmon, const std::string& name) {
  tree.write("sys/class/hwmon/" + hwmon + "/name", name + "\n");
}

void temp(const TempTree& tree, const std::string& hwmon, int n, const std::string& milli,
          const std::string& label = {}) {
  const std::string base = "sys/class/hwmon/" + hwmon + "/temp" + std::to_string(n);
  tree.write(base + "_input", milli + "\n");
  tree.write(base + "_max", "100000\n");  // not a reading: must be ignored
  if (!label.empty()) tree.write(base + "_label", label + "\n");
}

void fan(const TempTree& tree, const std::string& hwmon, int n, const std::string& rpm) {
  tree.write("sys/class/hwmon/" + hwmon + "/fan" + std::to_string(n) + "_input", rpm + "\n");
}

void supply(const TempTree& tree, const std::string& name, const std::string& attribute,
            const std::string& value) {
  tree.write("sys/class/power_supply/" + name + "/" + attribute, value + "\n");
}

void amdgpuCard(const TempTree& tree, const std::string& card) {
  const std::string device = "sys/class/drm/" + card + "/device/";
  tree.write(device + "gpu_busy_percent", "37\n");
  tree.write(device + "mem_info_vram_used", "536870912\n");
  tree.write(device + "mem_info_vram_total", "2147483648\n");
  tree.write(device + "power/runtime_status", "active\n");
  tree.write(device + "hwmon/hwmon9/temp1_input", "52000\n");
  tree.write("sys/bus/pci/drivers/amdgpu/bind", "");
  tree.symlink(tree.path("sys/bus/pci/drivers/amdgpu"), device + "driver");
}

void thinkPadBattery(const TempTree& tree) {
  supply(tree, "BAT0", "type", "Battery");
  supply(tree, "BAT0", "status", "Discharging");
  supply(tree, "BAT0", "capacity", "80");
  supply(tree, "BAT0", "energy_now", "40000000");
  supply(tree, "BAT0", "energy_full", "50000000");
  supply(tree, "BAT0", "energy_full_design", "57000000");
  supply(tree, "BAT0", "power_now", "9500000");
  supply(tree, "BAT0", "cycle_count", "312");
  supply(tree, "AC", "type", "Mains");
  supply(tree, "AC", "online", "0");
}

}  // namespace

void buildThinkPad(const TempTree& tree) {
  chip(tree, "hwmon0", "acpitz");
  temp(tree, "hwmon0", 1, "48000");
  chip(tree, "hwmon2", "thinkpad");
  for (int n = 1; n <= 8; ++n) temp(tree, "hwmon2", n, std::to_string(30000 + n * 2000));
  fan(tree, "hwmon2", 1, "2900");
  chip(tree, "hwmon4", "coretemp");
  temp(tree, "hwmon4", 1, "61000", "Package id 0");
  temp(tree, "hwmon4", 2, "59000", "Core 0");
  temp(tree, "hwmon4", 3, "64000", "Core 1");
  chip(tree, "hwmon5", "nvme");
  temp(tree, "hwmon5", 1, "40850", "Composite");
  thinkPadBattery(tree);
}

void buildAmdLaptop(const TempTree& tree) {
  chip(tree, "hwmon1", "k10temp");
  temp(tree, "hwmon1", 1, "70125", "Tctl");
  temp(tree, "hwmon1", 3, "68000", "Tccd1");
  chip(tree, "hwmon3", "amdgpu");
  temp(tree, "hwmon3", 1, "52000", "edge");
  amdgpuCard(tree, "card0");
  tree.symlink(tree.path("sys/class/drm/card0/device"), "sys/class/hwmon/hwmon3/device");
  tree.makeDirectory("sys/class/drm/card0-eDP-1");
  supply(tree, "BAT1", "type", "Battery");
  supply(tree, "BAT1", "status", "Charging");
  supply(tree, "BAT1", "capacity", "55");
  supply(tree, "BAT1", "charge_now", "2500000");
  supply(tree, "BAT1", "charge_full", "4500000");
  supply(tree, "BAT1", "charge_full_design", "5000000");
  supply(tree, "BAT1", "current_now", "1500000");
  supply(tree, "BAT1", "voltage_now", "12000000");
  supply(tree, "BAT1", "cycle_count", "0");
  supply(tree, "BAT1", "temp", "312");
  supply(tree, "ACAD", "type", "Mains");
  supply(tree, "ACAD", "online", "1");
  supply(tree, "hidpp_battery_0", "type", "Battery");
  supply(tree, "hidpp_battery_0", "scope", "Device");
  supply(tree, "hidpp_battery_0", "capacity", "5");
}

void buildNvidiaDesktop(const TempTree& tree) {
  chip(tree, "hwmon0", "k10temp");
  temp(tree, "hwmon0", 1, "45000", "Tctl");
  temp(tree, "hwmon0", 2, "43000", "Tdie");
  chip(tree, "hwmon1", "nct6798");
  temp(tree, "hwmon1", 1, "35000", "SYSTIN");
  fan(tree, "hwmon1", 1, "800");
  fan(tree, "hwmon1", 2, "0");
  fan(tree, "hwmon1", 3, "1200");
  tree.write("sys/class/drm/card0/device/power/runtime_status", "active\n");
  tree.write("sys/bus/pci/drivers/nvidia/bind", "");
  tree.symlink(tree.path("sys/bus/pci/drivers/nvidia"), "sys/class/drm/card0/device/driver");
  tree.write("proc/driver/nvidia/version", "NVRM version: fake\n");
}

void buildLargeMachine(const TempTree& tree, int sensors, int fans) {
  for (int i = 0; i < sensors; ++i) {
    const std::string hwmon = "hwmon" + std::to_string(10 + i / 8);
    if (i % 8 == 0) chip(tree, hwmon, i == 0 ? "coretemp" : "chip" + std::to_string(i / 8));
    // PCI devices have runtime power management, and their chips' status is read each pass.
    if (i % 8 == 0 && i > 0)
      tree.write("sys/class/hwmon/" + hwmon + "/device/power/runtime_status", "active\n");
    temp(tree, hwmon, i % 8 + 1, std::to_string(40000 + i * 250),
         i == 0 ? "Package id 0" : "Core " + std::to_string(i));
  }
  chip(tree, "hwmon90", "nct6798");
  for (int n = 1; n <= fans; ++n) fan(tree, "hwmon90", n, std::to_string(900 + n * 100));
  thinkPadBattery(tree);
  amdgpuCard(tree, "card1");
}

}  // namespace quillmark::testing
