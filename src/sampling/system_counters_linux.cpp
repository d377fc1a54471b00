#include "sampling/linux/system_counters_linux.h"

#include <dirent.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cstring>
#include <memory>
#include <utility>

#include "base/paths.h"
#include "sampling/linux/proc_parsers.h"

namespace quillmark {
namespace {

// An interface whose counters moved since the last read is up: a down interface passes no
// traffic. Only a quiet one has its flags re-read, and only on every sixteenth read of the totals:
// a sysfs read per tick would cost a sixth of the whole tick, and a quiet interface adds nothing
// to the rates whichever way it is judged.
constexpr std::uint64_t kFlagsRefreshEvery = 16;
// zram devices are set up at boot (or rarely by hand); looking for new ones every 512 reads keeps
// the directory walk out of the tick.
constexpr std::uint64_t kZramRescanEvery = 512;
constexpr std::uint64_t kIffUp = 0x1;

std::uint64_t saturatingAdd(std::uint64_t a, std::uint64_t b) {
  std::uint64_t sum = 0;
  return __builtin_add_overflow(a, b, &sum) ? UINT64_MAX : sum;
}

std::uint64_t saturatingSub(std::uint64_t a, std::uint64_t b) { return a > b ? a - b : 0; }

std::string withSlash(std::string root) {
  if (root.empty() || root.back() != '/') root.push_back('/');
  return root;
}

}  // namespace

std::unique_ptr<SystemCounters> SystemCounters::makePlatform() {
  return std::make_unique<LinuxSystemCounters>();
}

LinuxSystemCounters::LinuxSystemCounters(std::string root)
    : root_(withSlash(std::move(root))),
      stat_(root_ + "proc/stat"),
      meminfo_(root_ + "proc/meminfo"),
      netDev_(root_ + "proc/net/dev") {}

std::optional<std::string_view> LinuxSystemCounters::readNoting(KeptOpenFile& file) {
  auto text = file.read();
  if (!text) lastError_ = file.path() + ": " + std::strerror(file.lastError());
  return text;
}

CPUReading LinuxSystemCounters::readCPU() {
  auto text = readNoting(stat_);
  if (!text) return {};
  return procfs::parseProcStatCPU(*text);
}

std::optional<MemorySample> LinuxSystemCounters::memorySample(const procfs::MemInfo& info,
                                                              std::uint64_t zramBytes) {
  if (!info.memTotal) return std::nullopt;
  // Linux has no wired/compressed/app split of its own; the buckets below are chosen so that
  // they sum to MemTotal and mean what they mean on macOS:
  // - free: MemFree, pages nobody uses.
  // - app: AnonPages + Shmem, all swap-backed memory of processes. Shmem (tmpfs, shared
  //   anonymous mappings, GPU buffers) is swap-backed like anonymous memory, not a file cache.
  // - cached: Buffers + Cached - Shmem + KReclaimable (SReclaimable on kernels without it): file
  //   pages and kernel caches the kernel drops under pressure. Cached includes Shmem, hence the
  //   subtraction.
  // - compressed: Zswap (the compressed pool) + the zram pools' mem_used_total. Neither appears
  //   in any other meminfo line.
  // - wired: the residual, i.e. unreclaimable slab, kernel stacks, page tables, vmalloc, driver
  //   and hugetlb pages. Unevictable/Mlocked are not added: they are already inside AnonPages or
  //   Cached, and adding them would count them twice.
  const std::uint64_t total = *info.memTotal;
  MemorySample sample;
  sample.total = total;
  sample.free = info.memFree.value_or(0);
  sample.app = saturatingAdd(info.anonPages.value_or(0), info.shmem.value_or(0));
  const std::uint64_t reclaimable = info.kReclaimable.value_or(info.sReclaimable.value_or(0));
  sample.cached = saturatingSub(
      saturatingAdd(saturatingAdd(info.buffers.value_or(0), info.cached.value_or(0)), reclaimable),
      info.shmem.value_or(0));
  sample.compressed = saturatingAdd(info.zswap.value_or(0), zramBytes);
  std::uint64_t accounted = saturatingAdd(sample.free, sample.app);
  accounted = saturatingAdd(accounted, sample.cached);
  accounted = saturatingAdd(accounted, sample.compressed);
  sample.wired = saturatingSub(total, accounted);
  return SystemCounterMath::capToTotal(sample);
}

std::optional<MemorySample> LinuxSystemCounters::readMemory() {
  auto text = readNoting(meminfo_);
  if (!text) return std::nullopt;
  const procfs::MemInfo info = procfs::parseMemInfo(*text);
  return memorySample(info, zramBytes());
}

void LinuxSystemCounters::findZramDevices() {
  zramStats_.clear();
  const std::string blockDir = root_ + "sys/block/";
  std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(blockDir.c_str()), closedir);
  if (!dir) return;
  while (const dirent* entry = readdir(dir.get())) {
    const std::string_view name = entry->d_name;
    if (name.substr(0, 4) != "zram") continue;
    // An uninitialised device has no pool; its mm_stat would be read every tick for nothing.
    KeptOpenFile disksize(blockDir + std::string(name) + "/disksize");
    auto text = disksize.read();
    auto size = text ? procfs::parseDecimalAttribute(*text) : std::nullopt;
    if (size && *size > 0) zramStats_.emplace_back(blockDir + std::string(name) + "/mm_stat");
  }
}

std::uint64_t LinuxSystemCounters::zramBytes() {
  if (memoryReads_++ % kZramRescanEvery == 0) findZramDevices();
  std::uint64_t bytes = 0;
  for (KeptOpenFile& file : zramStats_) {
    auto text = file.read();
    if (auto used = text ? procfs::parseZramMemUsed(*text) : std::nullopt)
      bytes = saturatingAdd(bytes, *used);
  }
  return bytes;
}

// Physical means backed by a device: loopback, bridges, bonds, VLANs, tunnels, veth, docker and
// WireGuard interfaces have no `device` link, and their traffic is either local or already counted
// on a physical member. Names come from the kernel and cannot hold '/', but a damaged file could.
LinuxSystemCounters::Interface LinuxSystemCounters::makeInterface(std::string_view name) const {
  Interface interface;
  interface.name = std::string(name);
  if (name.find('/') != std::string_view::npos || name == "." || name == "..") return interface;
  const std::string dir = root_ + "sys/class/net/" + interface.name;
  struct stat info {};
  interface.physical = ::stat((dir + "/device").c_str(), &info) == 0;
  if (interface.physical) {
    interface.flags.emplace(dir + "/flags");
    interface.up = readUp(interface);
  }
  return interface;
}

bool LinuxSystemCounters::readUp(Interface& interface) {
  auto text = interface.flags ? interface.flags->read() : std::nullopt;
  auto flags = text ? procfs::parseHexAttribute(*text) : std::nullopt;
  return flags && (*flags & kIffUp) != 0;
}

std::optional<NetCounters> LinuxSystemCounters::readNetworkBytes() {
  auto text = readNoting(netDev_);
  if (!text) return std::nullopt;
  const bool refreshFlags = ++netReads_ % kFlagsRefreshEvery == 0;
  for (Interface& interface : interfaces_) interface.seen = false;

  NetCounters counters;
  procfs::parseNetDev(*text, netDevEntries_);
  for (std::size_t row = 0; row < netDevEntries_.size(); ++row) {
    const procfs::NetDevEntry& entry = netDevEntries_[row];
    // The kernel lists interfaces in a stable order, so the same row usually holds the same name.
    Interface* interface =
        row < interfaces_.size() && interfaces_[row].name == entry.name ? &interfaces_[row] : nullptr;
    for (std::size_t i = 0; !interface && i < interfaces_.size(); ++i) {
      if (interfaces_[i].name == entry.name) interface = &interfaces_[i];
    }
    if (!interface) {
      interface = &interfaces_.emplace_back(makeInterface(entry.name));
    } else if (interface->physical) {
      const bool moved = entry.rxBytes != interface->lastRx || entry.txBytes != interface->lastTx;
      if (moved) {
        interface->up = true;
      } else if (refreshFlags) {
        interface->up = readUp(*interface);
      }
    }
    interface->seen = true;
    interface->lastRx = entry.rxBytes;
    interface->lastTx = entry.txBytes;
    if (!interface->physical || !interface->up) continue;
    counters.push_back({interface->name, entry.rxBytes, entry.txBytes});
  }
  // A name that went away is judged afresh if it comes back: it may be another kind of device.
  std::erase_if(interfaces_, [](const Interface& interface) { return !interface.seen; });
  return counters;
}

DiskSpace LinuxSystemCounters::readDiskSpace() {
  struct statvfs info {};
  if (::statvfs(homeDirectory().c_str(), &info) != 0) return {};
  DiskSpace disk;
  // f_bavail, not f_bfree: blocks reserved for root are not space the user can fill.
  if (__builtin_mul_overflow(static_cast<std::uint64_t>(info.f_blocks), info.f_frsize, &disk.total) ||
      __builtin_mul_overflow(static_cast<std::uint64_t>(info.f_bavail), info.f_frsize, &disk.free)) {
    return {};
  }
  return disk;
}

// btime rather than CLOCK_REALTIME - CLOCK_BOOTTIME: the kernel computes btime the same way, so
// both follow a stepped wall clock alike, and whole seconds are plenty for an uptime display. It
// also comes from the root path, so a fake tree can pin it.
std::optional<double> LinuxSystemCounters::readBootTime() {
  auto text = stat_.read();
  if (!text) return std::nullopt;
  auto seconds = procfs::parseProcStat(*text).bootTime;
  if (!seconds) return std::nullopt;
  return static_cast<double>(*seconds);
}

}  // namespace quillmark
