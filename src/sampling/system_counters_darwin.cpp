#include <ifaddrs.h>
#include <mach/mach.h>
#include <net/if.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/sysctl.h>
#include <sys/time.h>

#include <cstring>
#include <memory>
#include <string_view>

#include "base/check.h"
#include "base/paths.h"
#include "sampling/system_counters.h"

namespace quillmark {
namespace {

// The raw macOS reads: Mach host statistics, sysctl, the interface list and statfs. Every formula
// on top of them (deltas, loads, rates, caps) lives in the portable SystemCounterMath.
class DarwinSystemCounters final : public SystemCounters {
 public:
  // mach_host_self() hands out a new send right on every call, so one is taken for the reader's
  // lifetime and given back at the end.
  DarwinSystemCounters() : host_(mach_host_self()) {}
  ~DarwinSystemCounters() override { (void)mach_port_deallocate(mach_task_self(), host_); }
  DarwinSystemCounters(const DarwinSystemCounters&) = delete;
  DarwinSystemCounters& operator=(const DarwinSystemCounters&) = delete;

  CPUReading readCPU() override { return CPUReading{readHostCPU(), readPerCoreCPU()}; }

  std::optional<MemorySample> readMemory() override {
    vm_statistics64_data_t stats{};
    mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
    if (host_statistics64(host_, HOST_VM_INFO64, reinterpret_cast<host_info64_t>(&stats), &count) !=
        KERN_SUCCESS) {
      return std::nullopt;
    }
    // Neither the page size nor the installed memory changes while the machine runs, so each is
    // asked for until the kernel first answers and then kept, sparing two calls per tick.
    if (pageSize_ == 0 && host_page_size(host_, &pageSize_) != KERN_SUCCESS) pageSize_ = 0;
    if (pageSize_ == 0) return std::nullopt;
    if (physicalMemory_ == 0) physicalMemory_ = physicalMemory();
    return breakdown(stats, pageSize_, physicalMemory_);
  }

  std::optional<NetCounters> readNetworkBytes() override {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return std::nullopt;
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(list, [](ifaddrs* head) { freeifaddrs(head); });
    NetCounters counters;
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
      if (!counts(*entry)) continue;
      const auto* data = static_cast<const if_data*>(entry->ifa_data);
      counters.push_back({entry->ifa_name, data->ifi_ibytes, data->ifi_obytes});
    }
    return counters;
  }

  DiskSpace readDiskSpace() override {
    // statfs gives the same two figures as the file manager's file-system attributes (free space
    // available to the user, and size) through a C call that the fake kernel can script.
    struct statfs volume {};
    if (statfs(homeDirectory().c_str(), &volume) != 0) return {};
    return DiskSpace{checkedMul<std::uint64_t>(volume.f_bavail, volume.f_bsize),
                     checkedMul<std::uint64_t>(volume.f_blocks, volume.f_bsize)};
  }

  std::optional<double> readBootTime() override {
    timeval boot{};
    std::size_t length = sizeof boot;
    if (sysctlbyname("kern.boottime", &boot, &length, nullptr, 0) != 0 || length != sizeof boot)
      return std::nullopt;
    return static_cast<double>(boot.tv_sec) + static_cast<double>(boot.tv_usec) / 1'000'000.0;
  }

 private:
  std::optional<CPUTicks> readHostCPU() {
    host_cpu_load_info_data_t load{};
    mach_msg_type_number_t count = HOST_CPU_LOAD_INFO_COUNT;
    if (host_statistics(host_, HOST_CPU_LOAD_INFO, reinterpret_cast<host_info_t>(&load), &count) !=
            KERN_SUCCESS ||
        count < HOST_CPU_LOAD_INFO_COUNT) {
      return std::nullopt;
    }
    return ticksOf(load.cpu_ticks);
  }

  std::vector<CoreTicks> readPerCoreCPU() {
    natural_t processors = 0;
    processor_info_array_t info = nullptr;
    mach_msg_type_number_t infoCount = 0;
    if (host_processor_info(host_, PROCESSOR_CPU_LOAD_INFO, &processors, &info, &infoCount) != KERN_SUCCESS ||
        !info) {
      return {};
    }
    std::vector<CoreTicks> cores;
    if (static_cast<std::uint64_t>(processors) * CPU_STATE_MAX <= infoCount) {
      cores.reserve(processors);
      for (natural_t cpu = 0; cpu < processors; ++cpu) {
        processor_cpu_load_info_data_t load{};
        std::memcpy(&load, info + static_cast<std::size_t>(cpu) * CPU_STATE_MAX, sizeof load);
        cores.push_back(CoreTicks{static_cast<int>(cpu), ticksOf(load.cpu_ticks)});
      }
    }
    // The array was allocated in our address space by the kernel; it is ours to give back, with
    // the size it was handed out with.
    (void)vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(info),
                        checkedMul<vm_size_t>(infoCount, sizeof(integer_t)));
    return cores;
  }

  static CPUTicks ticksOf(const natural_t (&ticks)[CPU_STATE_MAX]) {
    return CPUTicks{ticks[CPU_STATE_USER], ticks[CPU_STATE_SYSTEM], ticks[CPU_STATE_IDLE],
                    ticks[CPU_STATE_NICE]};
  }

  // Anonymous memory less its purgeable part is what applications hold; file-backed pages plus
  // purgeable ones are cache the kernel can drop; the compressor counts the pages it occupies, not
  // what it holds uncompressed.
  static MemorySample breakdown(const vm_statistics64_data_t& stats, std::uint64_t pageSize,
                                std::uint64_t total) {
    const auto bytes = [pageSize](std::uint64_t pages) { return checkedMul(pages, pageSize); };
    const std::uint64_t internal = bytes(stats.internal_page_count);
    const std::uint64_t purgeable = bytes(stats.purgeable_count);
    MemorySample sample;
    sample.total = total;
    sample.app = internal > purgeable ? internal - purgeable : 0;
    sample.wired = bytes(stats.wire_count);
    sample.compressed = bytes(stats.compressor_page_count);
    sample.cached = bytes(checkedAdd<std::uint64_t>(stats.purgeable_count, stats.external_page_count));
    sample.free = bytes(stats.free_count);
    return SystemCounterMath::capToTotal(sample);
  }

  // 0 when unknown, which caps every part to 0: nothing is shown rather than nonsense.
  static std::uint64_t physicalMemory() {
    std::uint64_t bytes = 0;
    std::size_t length = sizeof bytes;
    if (sysctlbyname("hw.memsize", &bytes, &length, nullptr, 0) != 0 || length != sizeof bytes) return 0;
    return bytes;
  }

  // Physical network interfaces only: up, not loopback, named en*, and the one link-layer entry
  // per interface (the only entry that carries counters). Tunnels and bridges repeat traffic that
  // an en* interface already counted.
  static bool counts(const ifaddrs& entry) {
    if ((entry.ifa_flags & IFF_UP) == 0 || (entry.ifa_flags & IFF_LOOPBACK) != 0) return false;
    if (!entry.ifa_addr || entry.ifa_addr->sa_family != AF_LINK) return false;
    if (!entry.ifa_name || !std::string_view(entry.ifa_name).starts_with("en")) return false;
    return entry.ifa_data != nullptr;
  }

  host_t host_;
  // The kernel's page size (16 KiB on Apple silicon), not the process's: under Rosetta the two
  // differ and the statistics count kernel pages. 0 until known.
  vm_size_t pageSize_ = 0;
  std::uint64_t physicalMemory_ = 0;  // bytes; 0 until known
};

}  // namespace

std::unique_ptr<SystemCounters> SystemCounters::makePlatform() {
  return std::make_unique<DarwinSystemCounters>();
}

}  // namespace quillmark
