#include "sampling/linux/system_counters_linux.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

using testing::TempTree;

std::string netDevRow(const std::string& name, std::uint64_t rx, std::uint64_t tx) {
  return "  " + name + ": " + std::to_string(rx) + " 10 0 0 0 0 0 0 " + std::to_string(tx) +
         " 10 0 0 0 0 0 0\n";
}

constexpr std::string_view kNetDevHeader =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop fifo colls "
    "carrier compressed\n";

// A /sys/class/net as the kernel lays it out: physical interfaces link `device` into the PCI or
// USB tree, virtual ones have no such link.
void addInterface(const TempTree& tree, const std::string& name, const char* flags, bool physical) {
  const std::string dir =
      "sys/devices/" + std::string(physical ? "pci0000:00/0000:00:03.0/net/" : "virtual/net/") + name;
  tree.write(dir + "/flags", flags);
  tree.symlink("../../devices/" + dir.substr(12), "sys/class/net/" + name);
  if (physical) tree.symlink("../../../0000:00:03.0", dir + "/device");
}

TEST(LinuxNetworkTotals, CountOnlyPhysicalInterfacesThatAreUp) {
  TempTree tree;
  addInterface(tree, "lo", "0x9\n", false);
  addInterface(tree, "docker0", "0x1003\n", false);
  addInterface(tree, "wg0", "0x91\n", false);
  addInterface(tree, "veth12ab", "0x1003\n", false);
  addInterface(tree, "eth0", "0x1003\n", true);
  addInterface(tree, "wlan0", "0x1003\n", true);
  addInterface(tree, "eth1", "0x1002\n", true);  // cable in, interface down
  tree.write("proc/net/dev", std::string(kNetDevHeader) + netDevRow("lo", 1'000'000, 1'000'000) +
                                 netDevRow("docker0", 50'000, 60'000) + netDevRow("wg0", 7'000, 8'000) +
                                 netDevRow("veth12ab", 300, 400) + netDevRow("eth0", 1000, 100) +
                                 netDevRow("wlan0", 2000, 200) + netDevRow("eth1", 90'000, 90'000));
  LinuxSystemCounters counters(tree.root());
  EXPECT_EQ(counters.readNetworkBytes(), (NetTotals{3000, 300}));

  // A device plugged in later is judged when its name first shows up; one that went away stops
  // counting at once.
  addInterface(tree, "usb0", "0x1003\n", true);
  tree.write("proc/net/dev", std::string(kNetDevHeader) + netDevRow("lo", 1'000'500, 1'000'500) +
                                 netDevRow("wlan0", 2500, 250) + netDevRow("usb0", 40, 4));
  EXPECT_EQ(counters.readNetworkBytes(), (NetTotals{2540, 254}));

  tree.remove("proc/net/dev");
  tree.makeDirectory("proc/net/dev");
  EXPECT_EQ(LinuxSystemCounters(tree.root()).readNetworkBytes(), std::nullopt);
}

TEST(LinuxNetworkTotals, MatchTheKernelsCountersOfPhysicalInterfaces) {
  // Summed independently of the reader: every /proc/net/dev row whose interface has a device link
  // and the up flag. Traffic may flow meanwhile, so the sum must fall between two reads of ours.
  auto independentSum = [] {
    NetTotals sum;
    std::ifstream in("/proc/net/dev");
    std::string line;
    while (std::getline(in, line)) {
      const auto colon = line.find(':');
      if (colon == std::string::npos) continue;
      std::string name = line.substr(0, colon);
      name.erase(0, name.find_first_not_of(' '));
      const std::filesystem::path dir = "/sys/class/net/" + name;
      unsigned flags = 0;
      std::ifstream(dir / "flags") >> std::hex >> flags;
      if (!std::filesystem::exists(dir / "device") || !(flags & 1)) continue;
      std::istringstream columns(line.substr(colon + 1));
      std::uint64_t value = 0;
      for (int i = 0; i < 9 && columns >> value; ++i) {
        if (i == 0) sum.down += value;
        if (i == 8) sum.up += value;
      }
    }
    return sum;
  };
  LinuxSystemCounters counters;
  const auto before = counters.readNetworkBytes();
  const NetTotals reference = independentSum();
  const auto after = counters.readNetworkBytes();
  ASSERT_TRUE(before && after);
  EXPECT_LE(before->down, reference.down);
  EXPECT_LE(reference.down, after->down);
  EXPECT_LE(before->up, reference.up);
  EXPECT_LE(reference.up, after->up);
}

TEST(LinuxCPUCounters, FollowTheFileAndIndexCoresByLabel) {
  TempTree tree;
  tree.write("proc/stat",
             "cpu  10 0 10 100 0 0 0 0 0 0\ncpu0 5 0 5 50 0 0 0 0 0 0\ncpu1 5 0 5 50 0 0 0 0 0 0\n");
  LinuxSystemCounters counters(tree.root());
  const CPUReading first = counters.readCPU();
  ASSERT_EQ(first.perCore.size(), 2u);
  // cpu0 went offline: the kernel prints no cpu0 line, and cpu1 must stay cpu1.
  tree.write("proc/stat", "cpu  20 0 20 200 0 0 0 0 0 0\ncpu1 9 0 9 90 0 0 0 0 0 0\n");
  const CPUReading second = counters.readCPU();
  ASSERT_TRUE(second.total);
  EXPECT_EQ(second.total->user, 20u);
  ASSERT_EQ(second.perCore.size(), 1u);
  EXPECT_EQ(second.perCore[0].cpu, 1);
  EXPECT_EQ(second.perCore[0].ticks.idle, 90u);
}

TEST(LinuxCPUCounters, TicksGrowAndEveryOnlineProcessorIsListed) {
  LinuxSystemCounters counters;
  const CPUReading first = counters.readCPU();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  const CPUReading second = counters.readCPU();
  ASSERT_TRUE(first.total && second.total);
  auto sum = [](const CPUTicks& t) { return t.user + t.system + t.idle + t.nice; };
  EXPECT_GT(sum(*second.total), sum(*first.total));
  EXPECT_EQ(second.perCore.size(), static_cast<std::size_t>(sysconf(_SC_NPROCESSORS_ONLN)));
}

TEST(LinuxMemory, BucketsSumToTotalWithZswapAndInitialisedZramOnly) {
  TempTree tree;
  tree.write("proc/meminfo",
             // In the kernel's order, which the parser relies on to stop early.
             "MemTotal:  1000 kB\nMemFree:  100 kB\nBuffers:  10 kB\nCached:  300 kB\nZswap:  20 kB\n"
             "AnonPages:  200 kB\nShmem:  50 kB\nKReclaimable:  40 kB\nSReclaimable:  30 kB\n"
             "Hugetlb:  1000 kB\n");
  tree.write("sys/block/zram0/disksize", "1048576\n");
  tree.write("sys/block/zram0/mm_stat", "40960 10240 15360 0 15360 0 0 0 0\n");
  tree.write("sys/block/zram1/disksize", "0\n");
  tree.write("sys/block/zram1/mm_stat", "0 0 999999 0 0 0 0 0 0\n");
  tree.write("sys/block/vda/size", "1\n");
  const auto memory = LinuxSystemCounters(tree.root()).readMemory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(memory->total, 1000u * 1024);
  EXPECT_EQ(memory->free, 100u * 1024);
  EXPECT_EQ(memory->app, 250u * 1024);                      // anonymous + shmem
  EXPECT_EQ(memory->cached, (10u + 300 - 50 + 40) * 1024);  // KReclaimable preferred
  EXPECT_EQ(memory->compressed, 20u * 1024 + 15360);
  EXPECT_EQ(memory->free + memory->app + memory->cached + memory->compressed + memory->wired, memory->total);
}

TEST(LinuxMemory, MappingSurvivesMissingAndInconsistentKeys) {
  procfs::MemInfo noTotal;
  noTotal.memFree = 1;
  EXPECT_FALSE(LinuxSystemCounters::memorySample(noTotal, 0));

  // An older kernel: no KReclaimable, no Zswap.
  procfs::MemInfo old;
  old.memTotal = 1000;
  old.memFree = 100;
  old.cached = 300;
  old.anonPages = 200;
  old.sReclaimable = 30;
  const auto oldSample = LinuxSystemCounters::memorySample(old, 0);
  ASSERT_TRUE(oldSample);
  EXPECT_EQ(oldSample->cached, 330u);
  EXPECT_EQ(oldSample->compressed, 0u);
  EXPECT_EQ(oldSample->wired, 370u);

  // Shmem above Cached, parts above the total: nothing wraps, nothing exceeds the total.
  procfs::MemInfo odd;
  odd.memTotal = 1000;
  odd.memFree = 900;
  odd.cached = 10;
  odd.shmem = 50;
  odd.anonPages = 5000;
  const auto oddSample = LinuxSystemCounters::memorySample(odd, 7);
  ASSERT_TRUE(oddSample);
  EXPECT_EQ(oddSample->cached, 0u);
  EXPECT_EQ(oddSample->wired, 0u);
  EXPECT_EQ(oddSample->app, 1000u);
  EXPECT_EQ(oddSample->usageFraction(), 1.0);
}

TEST(LinuxMemory, TotalIsMemTotal) {
  std::ifstream in("/proc/meminfo");
  std::string key;
  std::uint64_t kib = 0;
  in >> key >> kib;
  ASSERT_EQ(key, "MemTotal:");
  const auto memory = LinuxSystemCounters().readMemory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(memory->total, kib * 1024);
  EXPECT_GT(memory->free, 0u);
  EXPECT_GT(memory->app, 0u);
}

TEST(LinuxBootTime, AgreesWithUptime) {
  double uptime = 0;
  std::ifstream("/proc/uptime") >> uptime;
  const double now =
      std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  const auto boot = LinuxSystemCounters().readBootTime();
  ASSERT_TRUE(boot);
  EXPECT_NEAR(*boot, now - uptime, 1.0);

  TempTree tree;
  tree.write("proc/stat", "cpu  1 0 1 1 0 0 0 0 0 0\nbtime 1700000000\n");
  EXPECT_EQ(LinuxSystemCounters(tree.root()).readBootTime(), 1700000000.0);
  EXPECT_EQ(LinuxSystemCounters(tree.path("missing")).readBootTime(), std::nullopt);
}

TEST(LinuxReaders, MissingFilesGiveDefaults) {
  TempTree tree;
  LinuxSystemCounters counters(tree.root());
  EXPECT_FALSE(counters.readCPU().total);
  EXPECT_TRUE(counters.readCPU().perCore.empty());
  EXPECT_FALSE(counters.readMemory());
  EXPECT_FALSE(counters.readNetworkBytes());
}

// What the user can still write, as df reports it (not counting blocks reserved for root).
TEST(LinuxDiskSpace, MatchesDfForTheHomeFolderAndIsZeroWithoutOne) {
  TempTree tree;
  const char* savedHome = std::getenv("HOME");
  const std::string restore = savedHome ? savedHome : "";
  ::setenv("HOME", tree.root().c_str(), 1);
  const DiskSpace disk = LinuxSystemCounters().readDiskSpace();
  std::uint64_t dfSize = 0, dfAvail = 0;
  if (FILE* df = ::popen(("df -B1 --output=size,avail " + tree.root() + " | tail -n 1").c_str(), "r")) {
    unsigned long long size = 0, avail = 0;
    if (std::fscanf(df, "%llu %llu", &size, &avail) == 2) dfSize = size, dfAvail = avail;
    ::pclose(df);
  }
  ::setenv("HOME", tree.path("gone").c_str(), 1);
  const DiskSpace missing = LinuxSystemCounters().readDiskSpace();
  savedHome ? ::setenv("HOME", restore.c_str(), 1) : ::unsetenv("HOME");

  ASSERT_GT(dfSize, 0u) << "df did not run";
  EXPECT_EQ(disk.total, dfSize);
  // Other programs write meanwhile; 64 MiB of slack.
  EXPECT_NEAR(static_cast<double>(disk.free), static_cast<double>(dfAvail), 64.0 * 1024 * 1024);
  EXPECT_EQ(missing.total, 0u);
  EXPECT_EQ(missing.free, 0u);
}

}  // namespace
}  // namespace quillmark
