#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sampling/samples.h"

namespace quillmark {

// Cumulative CPU time counters in the kernel's ticks, folded into the four states the load
// formula uses. 64-bit so that Linux's wide counters fit; macOS fills them from 32-bit fields.
struct CPUTicks {
  std::uint64_t user = 0;
  std::uint64_t system = 0;
  std::uint64_t idle = 0;
  std::uint64_t nice = 0;
  bool operator==(const CPUTicks&) const = default;
};

// One logical processor's counters, tagged with the processor's number so that a processor that
// goes offline is never compared with its neighbour.
struct CoreTicks {
  int cpu = 0;
  CPUTicks ticks;
  bool operator==(const CoreTicks&) const = default;
};

// One read of the CPU counters: the whole machine (absent when the read failed) and each online
// processor (empty when that read failed).
struct CPUReading {
  std::optional<CPUTicks> total;
  std::vector<CoreTicks> perCore;
};

// One counted interface's received and sent bytes since it came up, keyed by its name.
struct InterfaceBytes {
  std::string name;
  std::uint64_t down = 0;
  std::uint64_t up = 0;
  bool operator==(const InterfaceBytes&) const = default;
};

// One read of the counted interfaces (physical and up), in the order the system lists them.
using NetCounters = std::vector<InterfaceBytes>;

// The home volume: bytes the user can still write, and its size. Both 0 when unknown.
struct DiskSpace {
  std::uint64_t free = 0;
  std::uint64_t total = 0;
};

// The platform's cheap whole-machine readers. They never throw and never log: a failed read
// returns absent/empty/zero and the tick goes on. Called on the monitor's queue only: the readers
// keep files and buffers between calls and are not thread-safe.
class SystemCounters {
 public:
  virtual ~SystemCounters() = default;
  [[nodiscard]] virtual CPUReading readCPU() = 0;
  // The breakdown already mapped to app/wired/compressed/cached/free (see each platform).
  [[nodiscard]] virtual std::optional<MemorySample> readMemory() = 0;
  [[nodiscard]] virtual std::optional<NetCounters> readNetworkBytes() = 0;
  [[nodiscard]] virtual DiskSpace readDiskSpace() = 0;
  // Unix seconds of the last boot.
  [[nodiscard]] virtual std::optional<double> readBootTime() = 0;
  // Why the latest failed read failed ("/proc/stat: Too many open files"), for the caller's log;
  // empty when the platform does not say.
  [[nodiscard]] virtual std::string lastReadError() const { return {}; }

  // The real readers of this platform.
  static std::unique_ptr<SystemCounters> makePlatform();
};

// The algorithms shared by every platform: pure functions of previous and current readings.
namespace SystemCounterMath {

// c - p when the counter grew, else 0: a counter that went backwards contributes nothing.
[[nodiscard]] double tickDelta(std::uint64_t previous, std::uint64_t current);
// Busy share of the ticks that passed, 0-100; 0 when no tick passed.
[[nodiscard]] double cpuUsage(const CPUTicks& previous, const CPUTicks& current);
[[nodiscard]] inline double coreUsage(const CPUTicks& previous, const CPUTicks& current) {
  return cpuUsage(previous, current);
}
// Pairwise loads, or empty when the set of processors changed (or either read is empty).
[[nodiscard]] std::vector<double> perCoreUsage(const std::vector<CoreTicks>& previous,
                                               const std::vector<CoreTicks>& current);
// Rates from two reads `elapsed` seconds apart: 0 unless elapsed > 0.1 s. Each interface adds its
// own increase, and only when it was counted in both reads: one that appeared (a lifetime total
// is not traffic of this tick), disappeared, or whose counter went backwards (wrapped, reset) adds
// 0 in that direction for this tick, and the others' traffic is still reported.
[[nodiscard]] NetSample netRates(const NetCounters& previous, const NetCounters& current, double elapsed);
// Caps every part at total, since no part of physical memory can exceed it.
[[nodiscard]] MemorySample capToTotal(MemorySample sample);

}  // namespace SystemCounterMath

// Per-tick state of the counters (previous readings), owned by Monitor on its queue.
class SystemCounterTracker {
 public:
  // CPU load: the first tick, and a failed read, report 0; a failed total read keeps prevCPU.
  CPUSample cpu(const CPUReading& reading);
  // Network rates: a failed read reports 0 and keeps prevNet.
  NetSample network(const std::optional<NetCounters>& counters, double elapsed);

  std::optional<CPUTicks> prevCPU;
  std::vector<CoreTicks> prevPerCore;
  std::optional<NetCounters> prevNet;
};

}  // namespace quillmark
