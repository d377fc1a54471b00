#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace quillmark {

// The plain records that carry one measurement from the readers to Monitor and on to every
// consumer. Percentages are 0-100 doubles, byte counts unsigned 64-bit, rates bytes per second,
// temperatures degrees Celsius. Absent (std::nullopt) means "could not be read" and is never 0.

// Whole-machine CPU load.
struct CPUSample {
  double total = 0;             // busy share of all processors, 0-100
  std::vector<double> perCore;  // one load per logical processor, in the kernel's order
  bool operator==(const CPUSample&) const = default;
};

// Memory breakdown in bytes. Only app + wired + compressed count as used.
struct MemorySample {
  std::uint64_t total = 0;  // physical memory
  std::uint64_t app = 0;
  std::uint64_t wired = 0;
  std::uint64_t compressed = 0;
  std::uint64_t cached = 0;
  std::uint64_t free = 0;

  [[nodiscard]] std::uint64_t used() const;    // app + wired + compressed; overflow is fatal
  [[nodiscard]] double usageFraction() const;  // used / total in [0, 1]; 0 when total is 0
  bool operator==(const MemorySample&) const = default;
};

// Network throughput of the counted interfaces over the last tick.
struct NetSample {
  double downBps = 0;
  double upBps = 0;
  bool operator==(const NetSample&) const = default;
};

// One row of the process table (and of the energy list, where cpuPercent carries watts).
struct ProcessSample {
  std::int32_t pid = 0;
  std::string name;
  double cpuPercent = 0;  // of one processor since the previous scan; may exceed 100
  std::uint64_t memoryBytes = 0;
  // As RawProcess::startTime: with the pid it names one process, so per-process state kept
  // across samples (icons, insights) is never handed to a process that reused the pid.
  std::uint64_t startTime = 0;

  [[nodiscard]] std::int32_t id() const { return pid; }
  bool operator==(const ProcessSample&) const = default;
};

struct ThermalSample {
  std::optional<double> cpuC;
  std::optional<double> gpuC;
  std::optional<double> batteryC;
  std::optional<double> surfaceC;
  bool operator==(const ThermalSample&) const = default;
};

// The default value describes a machine without a battery.
struct BatterySample {
  std::optional<int> percentage;
  bool isCharging = false;
  bool isCharged = false;
  bool externalConnected = false;
  std::optional<int> cycleCount;
  std::optional<int> healthPercent;
  std::optional<double> powerWatts;
  bool operator==(const BatterySample&) const = default;
};

struct GPUSample {
  double deviceUtil = 0;
  std::optional<double> rendererUtil;
  std::optional<double> tilerUtil;
  std::optional<std::uint64_t> allocBytes;
  std::optional<int> coreCount;
  bool operator==(const GPUSample&) const = default;
};

struct FanReading {
  int index = 0;
  double actualRPM = 0;
  double targetRPM = 0;
  double minRPM = 0;
  double maxRPM = 0;
  bool forced = false;
  bool operator==(const FanReading&) const = default;
};

// The last values of the expensive readers, reused on ticks that do not run them.
struct HeavyCache {
  std::uint64_t diskFree = 0;
  std::uint64_t diskTotal = 0;
  std::vector<double> fans;
  ThermalSample thermal;
  BatterySample battery;
};

// One process as the platform reports it, before CPU time becomes a percentage.
struct RawProcess {
  std::int32_t pid = 0;
  std::string name;
  std::uint64_t cpuTime = 0;  // cumulative user + system time, nanoseconds
  std::uint64_t mem = 0;      // resident bytes
  // When the process started, in the platform's own unit; 0 when the platform does not say. With
  // the pid it names one process: a pid reused by a new process comes back with another start.
  std::uint64_t startTime = 0;
  bool operator==(const RawProcess&) const = default;
};

using PidSet = std::unordered_set<std::int32_t>;
// Sleep-preventing power assertions per process.
using AssertionMap = std::map<std::int32_t, std::vector<std::string>>;

}  // namespace quillmark
