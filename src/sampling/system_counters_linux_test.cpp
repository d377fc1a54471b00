#include "sampling/linux/system_counters_linux.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

using testing::TempTree;

std::string netDev(std::initializer_list<std::tuple<const char*, int, int>> rows) {
  std::string text = "Inter-|   Receive  |  Transmit\n face |bytes    packets|bytes    packets\n";
  for (const auto& [name, rx, tx] : rows) {
    text += "  " + std::string(name) + ": " + std::to_string(rx) + " 1 0 0 0 0 0 0 " + std::to_string(tx) +
            " 1 0 0\n";
  }
  return text;
}

// Laid out as the kernel does: physical interfaces link `device` into the PCI tree.
void addInterface(const TempTree& tree, const std::string& name, const char* flags, bool physical) {
  const std::string dir =
      (physical ? "sys/devices/pci0000:00/0000:00:03.0/net/" : "sys/devices/virtual/net/") + name;
  tree.write(dir + "/flags", flags);
  tree.symlink("../../" + dir.substr(4), "sys/class/net/" + name);
  if (physical) tree.symlink("../../../0000:00:03.0", dir + "/device");
}

TEST(LinuxNetworkTotals, CountOnlyPhysicalInterfacesThatAreUp) {
  TempTree tree;
  for (const char* name : {"lo", "docker0", "wg0", "veth12ab", "br0"})
    addInterface(tree, name, "0x1003\n", false);
  addInterface(tree, "eth0", "0x1003\n", true);
  addInterface(tree, "wlan0", "0x1003\n", true);
  addInterface(tree, "eth1", "0x1002\n", true);  // cable in, interface down
  tree.write("proc/net/dev", netDev({{"lo", 900000, 900000},
                                     {"docker0", 50000, 60000},
                                     {"wg0", 7000, 8000},
                                     {"veth12ab", 300, 400},
                                     {"br0", 1, 1},
                                     {"eth0", 1000, 100},
                                     {"wlan0", 2000, 200},
                                     {"eth1", 90000, 90000}}));
  LinuxSystemCounters counters(tree.root());
  EXPECT_EQ(counters.readNetworkBytes(), (NetCounters{{"eth0", 1000, 100}, {"wlan0", 2000, 200}}));

  // A device plugged in later counts from its first appearance; one that went away stops at once.
  addInterface(tree, "usb0", "0x1003\n", true);
  tree.write("proc/net/dev", netDev({{"lo", 900500, 900500}, {"wlan0", 2500, 250}, {"usb0", 40, 4}}));
  EXPECT_EQ(counters.readNetworkBytes(), (NetCounters{{"wlan0", 2500, 250}, {"usb0", 40, 4}}));

  tree.remove("proc/net/dev");
  EXPECT_EQ(LinuxSystemCounters(tree.root()).readNetworkBytes(), std::nullopt);
}

TEST(LinuxSystemCountersOnThisMachine, AtTheDescriptorLimitReadsFailAndSayWhy) {
  // The lowest free descriptor becomes the limit, so the next open fails with EMFILE.
  const int lowestFree = ::dup(0);
  ASSERT_GE(lowestFree, 0);
  ::close(lowestFree);
  rlimit saved{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &saved), 0);
  rlimit tight = saved;
  tight.rlim_cur = static_cast<rlim_t>(lowestFree);
  LinuxSystemCounters counters;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &tight), 0);
  const CPUReading cpu = counters.readCPU();
  const auto memory = counters.readMemory();
  ::setrlimit(RLIMIT_NOFILE, &saved);
  EXPECT_FALSE(cpu.total);
  EXPECT_FALSE(memory);
  EXPECT_EQ(counters.lastReadError(), "/proc/meminfo: " + std::string(std::strerror(EMFILE)));
  EXPECT_TRUE(counters.readCPU().total);  // recovers once descriptors are free again
}

TEST(LinuxCPUCounters, FollowTheFileInPlaceAndKeepCoreNumbers) {
  TempTree tree;
  tree.write("proc/stat",
             "cpu  10 0 10 100 0 0 0 0 0 0\ncpu0 5 0 5 50 0 0 0 0 0 0\ncpu1 5 0 5 50 0 0 0 0 0 0\n");
  LinuxSystemCounters counters(tree.root());
  EXPECT_EQ(counters.readCPU().perCore.size(), 2u);
  tree.write("proc/stat", "cpu  20 0 20 200 0 0 0 0 0 0\ncpu1 9 0 9 90 0 0 0 0 0 0\n");  // cpu0 offline
  const CPUReading second = counters.readCPU();
  EXPECT_EQ(second.total->user, 20u);
  ASSERT_EQ(second.perCore.size(), 1u);
  EXPECT_EQ(second.perCore[0].cpu, 1);

  EXPECT_FALSE(LinuxSystemCounters(tree.path("nowhere")).readCPU().total);
}

TEST(LinuxMemory, BucketsSumToTotalWithZswapAndInitialisedZramOnly) {
  TempTree tree;
  tree.write("proc/meminfo",  // in the kernel's order, which the parser relies on to stop early
             "MemTotal:  1000 kB\nMemFree:  100 kB\nBuffers:  10 kB\nCached:  300 kB\nZswap:  20 kB\n"
             "AnonPages:  200 kB\nShmem:  50 kB\nKReclaimable:  40 kB\nSReclaimable:  30 kB\n");
  tree.write("sys/block/zram0/disksize", "1048576\n");
  tree.write("sys/block/zram0/mm_stat", "40960 10240 15360 0 15360 0 0 0 0\n");
  tree.write("sys/block/zram1/disksize", "0\n");  // never set up: its pool is not there
  tree.write("sys/block/zram1/mm_stat", "0 0 999999 0 0 0 0 0 0\n");
  const auto memory = LinuxSystemCounters(tree.root()).readMemory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(memory->total, 1000u * 1024);
  EXPECT_EQ(memory->free, 100u * 1024);
  EXPECT_EQ(memory->app, 250u * 1024);                      // anonymous + shmem
  EXPECT_EQ(memory->cached, (10u + 300 - 50 + 40) * 1024);  // KReclaimable preferred
  EXPECT_EQ(memory->compressed, 20u * 1024 + 15360);
  EXPECT_EQ(memory->free + memory->app + memory->cached + memory->compressed + memory->wired, memory->total);

  tree.remove("proc/meminfo");
  EXPECT_FALSE(LinuxSystemCounters(tree.root()).readMemory());
}

TEST(LinuxMemory, MappingNeverWrapsOrExceedsTheTotal) {
  procfs::MemInfo info;
  EXPECT_FALSE(LinuxSystemCounters::memorySample(info, 0));
  info.memTotal = 1000;
  info.memFree = 900;
  info.cached = 10;
  info.shmem = 50;  // above Cached
  info.anonPages = 5000;
  info.sReclaimable = 30;  // no KReclaimable: older kernel
  const auto sample = LinuxSystemCounters::memorySample(info, 7);
  ASSERT_TRUE(sample);
  EXPECT_EQ(sample->cached, 0u);
  EXPECT_EQ(sample->wired, 0u);
  EXPECT_EQ(sample->app, 1000u);
  EXPECT_EQ(sample->compressed, 7u);
}

TEST(LinuxSystemCountersOnThisMachine, BootTimeAgreesWithProcAndEveryOnlineProcessorIsListed) {
  double uptime = 0;
  std::ifstream("/proc/uptime") >> uptime;
  const double now =
      std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  LinuxSystemCounters counters;
  const auto boot = counters.readBootTime();
  ASSERT_TRUE(boot);
  EXPECT_NEAR(*boot, now - uptime, 1.0);
  EXPECT_EQ(counters.readCPU().perCore.size(), static_cast<std::size_t>(sysconf(_SC_NPROCESSORS_ONLN)));

  TempTree tree;
  tree.write("proc/stat", "cpu  1 0 1 1 0 0 0 0 0 0\nbtime 1700000000\n");
  EXPECT_EQ(LinuxSystemCounters(tree.root()).readBootTime(), 1700000000.0);
}

// What the user can still write, as df reports it (blocks reserved for root excluded).
TEST(LinuxDiskSpace, MatchesDfForTheHomeFolderAndIsZeroWithoutOne) {
  TempTree tree;
  const std::string savedHome = std::getenv("HOME") ? std::getenv("HOME") : "/root";
  ::setenv("HOME", tree.root().c_str(), 1);
  const DiskSpace disk = LinuxSystemCounters().readDiskSpace();
  ::setenv("HOME", tree.path("gone").c_str(), 1);
  const DiskSpace missing = LinuxSystemCounters().readDiskSpace();
  ::setenv("HOME", savedHome.c_str(), 1);

  unsigned long long size = 0, avail = 0;
  FILE* df = ::popen(("df -B1 --output=size,avail " + tree.root() + " | tail -n 1").c_str(), "r");
  ASSERT_TRUE(df && std::fscanf(df, "%llu %llu", &size, &avail) == 2);
  ::pclose(df);
  EXPECT_EQ(disk.total, size);
  EXPECT_NEAR(static_cast<double>(disk.free), static_cast<double>(avail),
              64.0 * 1024 * 1024);  // others write
  EXPECT_EQ(missing.total, 0u);
  EXPECT_EQ(missing.free, 0u);
}

}  // namespace
}  // namespace quillmark
