// The macOS system-counter reader against the fake kernel: what it asks the kernel, how it
// reads the answers, and what it gives back.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "sampling/system_counters.h"
#include "sampling/testing/fake_darwin_kernel.h"

namespace quillmark {
namespace {

namespace fake = fake_darwin;

class DarwinCounters : public ::testing::Test {
 protected:
  void SetUp() override {
    fake::reset();
    reader = SystemCounters::makePlatform();
  }
  void TearDown() override {
    reader.reset();
    // Nothing handed out by the kernel may outlive the reader.
    EXPECT_TRUE(fake::kernel().liveAllocations.empty());
    EXPECT_EQ(fake::kernel().interfaceListsOut, 0);
    EXPECT_TRUE(fake::kernel().deallocationErrors.empty()) << fake::kernel().deallocationErrors.front();
  }
  fake::Kernel& k = fake::kernel();
  std::unique_ptr<SystemCounters> reader;
};

TEST_F(DarwinCounters, HostCPUTicksKeepTheirStatesAndFailuresAreAbsent) {
  k.cpuLoad = {100, 20, 700, 3};  // user, system, idle, nice
  auto reading = reader->readCPU();
  ASSERT_TRUE(reading.total);
  EXPECT_EQ(*reading.total, (CPUTicks{100, 20, 700, 3}));
  EXPECT_EQ(k.cpuLoadCountsAsked.back(), 4u);

  k.cpuLoadResult = KERN_FAILURE;
  EXPECT_FALSE(reader->readCPU().total);
  k.cpuLoadResult = KERN_SUCCESS;
  k.cpuLoadCountAnswered = 2;  // a partial record is no record
  EXPECT_FALSE(reader->readCPU().total);
}

TEST_F(DarwinCounters, PerCoreArrayIsCopiedInOrderAndReleasedWithItsSize) {
  k.processors = {{{1, 2, 3, 4}}, {{5, 6, 7, 8}}, {{9, 10, 11, 12}}};
  for (int tick = 0; tick < 3; ++tick) {
    const auto cores = reader->readCPU().perCore;
    ASSERT_EQ(cores.size(), 3u);
    EXPECT_EQ(cores[1], (CoreTicks{1, CPUTicks{5, 6, 7, 8}}));
    EXPECT_EQ(cores[2], (CoreTicks{2, CPUTicks{9, 10, 11, 12}}));
  }
  EXPECT_EQ(k.deallocations, 3);  // once per read, each with 3 × 4 × 4 bytes (checked in TearDown)

  // An array shorter than the processor count claims is not read, but still given back.
  k.processorInfoCountAnswered = 8;
  EXPECT_TRUE(reader->readCPU().perCore.empty());
  EXPECT_EQ(k.deallocations, 4);
  k.processorResult = KERN_FAILURE;
  EXPECT_TRUE(reader->readCPU().perCore.empty());
  EXPECT_EQ(k.deallocations, 4);  // nothing was handed out
}

TEST_F(DarwinCounters, MemoryBreakdownUsesKernelPagesAndCapsAtPhysicalMemory) {
  k.sysctl["hw.memsize"] = fake::bytesOf<std::uint64_t>(16ull << 30);
  k.vm.internal_page_count = 500'000;
  k.vm.purgeable_count = 20'000;
  k.vm.external_page_count = 80'000;
  k.vm.wire_count = 100'000;
  k.vm.compressor_page_count = 30'000;
  k.vm.total_uncompressed_pages_in_compressor = 90'000;
  k.vm.free_count = 40'000;
  k.vm.speculative_count = 5'000;
  auto memory = reader->readMemory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(k.vmCountsAsked.back(), 38u);
  EXPECT_EQ(memory->total, 16ull << 30);
  EXPECT_EQ(memory->app, 480'000ull * 16384);
  EXPECT_EQ(memory->wired, 100'000ull * 16384);
  EXPECT_EQ(memory->compressed, 30'000ull * 16384);
  EXPECT_EQ(memory->cached, 100'000ull * 16384);
  EXPECT_EQ(memory->free, 40'000ull * 16384);

  // The installed memory is asked for once: a later failure of that call changes nothing.
  k.sysctl.erase("hw.memsize");
  memory = reader->readMemory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(memory->total, 16ull << 30);

  k.vm.internal_page_count = 10'000;  // fewer anonymous than purgeable pages
  k.vm.free_count = 2'000'000;        // more than the machine has
  memory = reader->readMemory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(memory->app, 0u);
  EXPECT_EQ(memory->free, memory->total);
}

TEST_F(DarwinCounters, MemoryReadFailuresAndImpossibleSizes) {
  k.vmResult = KERN_FAILURE;
  EXPECT_FALSE(reader->readMemory());
  k.vmResult = KERN_SUCCESS;
  k.pageSizeResult = KERN_FAILURE;
  EXPECT_FALSE(reader->readMemory());
  k.pageSizeResult = KERN_SUCCESS;
  k.vm.wire_count = 1000;  // no hw.memsize: nothing can be shown as a share of it
  auto memory = reader->readMemory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(*memory, MemorySample{});
  // A fresh reader, since the page size is read once and kept.
  reader = SystemCounters::makePlatform();
  k.pageSize = vm_size_t{1} << 40;
  k.vm.wire_count = 0x01000000;
  EXPECT_DEATH((void)reader->readMemory(), "check failed");
}

TEST_F(DarwinCounters, OnlyPhysicalEthernetLinkEntriesCount) {
  const unsigned up = IFF_UP | IFF_RUNNING;
  k.interfaces = {
      {"lo0", up | IFF_LOOPBACK, AF_LINK, true, 1'000'000, 1'000'000},
      {"en0", up, AF_INET, true, 7, 7},  // an address entry, even if it carried data
      {"en0", up, AF_LINK, true, 0xFFFFFF00u, 0x10},
      {"utun0", up | IFF_POINTOPOINT, AF_LINK, true, 5000, 5000},
      {"bridge0", up, AF_LINK, true, 6000, 6000},
      {"en1", IFF_BROADCAST, AF_LINK, true, 9000, 9000},  // down
      {"en2", up, AF_LINK, false, 0, 0},                  // no counters
      {"en5", up, AF_LINK, true, 0x200, 0x20},
      {"en9", up | IFF_LOOPBACK, AF_LINK, true, 4000, 4000},  // a loopback, whatever its name
  };
  EXPECT_EQ(reader->readNetworkBytes(), (NetCounters{{"en0", 0xFFFFFF00u, 0x10}, {"en5", 0x200, 0x20}}));

  k.interfaces = {{"lo0", up | IFF_LOOPBACK, AF_LINK, true, 500, 500},
                  {"utun3", up, AF_LINK, true, 500, 500}};
  EXPECT_EQ(reader->readNetworkBytes(), NetCounters{});
  k.interfaces.clear();
  EXPECT_EQ(reader->readNetworkBytes(), NetCounters{});
  k.getifaddrsResult = ENOMEM;
  EXPECT_FALSE(reader->readNetworkBytes());
}

TEST_F(DarwinCounters, DiskSpaceOfTheHomeVolumeIsWhatTheUserCanWrite) {
  ASSERT_EQ(setenv("HOME", "/Users/tester", 1), 0);
  k.volume.f_bsize = 4096;
  k.volume.f_blocks = 1'000'000;
  k.volume.f_bfree = 300'000;
  k.volume.f_bavail = 250'000;  // the rest is reserved
  const DiskSpace disk = reader->readDiskSpace();
  EXPECT_EQ(k.statfsPaths.back(), "/Users/tester");
  EXPECT_EQ(disk.free, 250'000ull * 4096);
  EXPECT_EQ(disk.total, 1'000'000ull * 4096);
  k.statfsResult = EACCES;
  EXPECT_EQ(reader->readDiskSpace().total, 0u);
  EXPECT_EQ(reader->readDiskSpace().free, 0u);
}

TEST_F(DarwinCounters, BootTimeReadsTheDarwinTimevalLayout) {
  // 16 bytes: 64-bit seconds, 32-bit microseconds, then padding the kernel does not clear.
  std::vector<unsigned char> raw(16, 0);
  const std::int64_t seconds = 1'700'000'000;
  const std::int32_t micros = 250'000;
  std::memcpy(raw.data(), &seconds, 8);
  std::memcpy(raw.data() + 8, &micros, 4);
  std::memset(raw.data() + 12, 0xA5, 4);
  k.sysctl["kern.boottime"] = raw;
  ASSERT_TRUE(reader->readBootTime());
  EXPECT_DOUBLE_EQ(*reader->readBootTime(), 1'700'000'000.25);

  k.sysctl["kern.boottime"].resize(8);  // a short answer is not a time
  EXPECT_FALSE(reader->readBootTime());
  k.sysctl.erase("kern.boottime");
  EXPECT_FALSE(reader->readBootTime());
}

TEST(DarwinCountersPorts, TheHostPortIsTakenOnceAndGivenBack) {
  fake::reset();
  {
    auto reader = SystemCounters::makePlatform();
    (void)reader->readCPU();
    (void)reader->readMemory();
  }
  EXPECT_EQ(fake::kernel().hostPortsTaken, 1);
  EXPECT_EQ(fake::kernel().hostPortsReturned, 1);
}

}  // namespace
}  // namespace quillmark
