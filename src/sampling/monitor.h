#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/main_loop.h"
#include "base/published.h"
#include "base/serial_queue.h"
#include "base/shared_instance.h"
#include "sampling/monitor_hooks.h"
#include "sampling/process_scan.h"
#include "sampling/samples.h"
#include "sampling/system_counters.h"

namespace quillmark {

// The sampling engine. A repeating main-loop timer calls sample(); the measurement runs on a
// serial queue (at most one in flight: a tick that fires meanwhile is dropped, never queued) and
// the finished Snapshot is applied on the main thread, which publishes it and hands it to the
// alert, history, pause, insight and pin consumers. While the panel is closed (publishing paused,
// the initial state) only CPU, memory and network are published and the heavy readers stay idle.
//
// Threads: every public member is main-thread only. The queue-side state (previous counters, the
// process caches, the heavy cache) is touched only by the queue job; isSampling keeps jobs and
// applies from overlapping, so no lock is needed.
class Monitor : public std::enable_shared_from_this<Monitor> {
 public:
  using RawProcess = quillmark::RawProcess;

  // Everything one tick measured, built on the queue and handed whole to the main thread.
  struct Snapshot {
    CPUSample cpu;
    MemorySample memory;
    // False when the counters could not be read this tick (the descriptor limit, say): cpu or
    // memory then hold zeros that were never measured and are not published or reported.
    bool cpuRead = true;
    bool memoryRead = true;
    NetSample network;
    std::vector<ProcessSample> processes;  // fresh when processesScanned, else the last list
    std::uint64_t diskFree = 0;
    std::uint64_t diskTotal = 0;
    std::vector<double> fans;
    ThermalSample thermal;
    BatterySample battery;
    std::optional<GPUSample> gpu;
    bool gpuCollected = false;
    bool tempFresh = false;
    bool processesScanned = false;
    std::optional<AssertionMap> assertions;
    std::vector<ProcessSample> energyRows;
    PidSet livePids;
  };

  // The collaborators; all must outlive the monitor.
  struct Environment {
    MainLoop& loop;
    SerialQueue& queue;
    const Clock& clock;
    SystemCounters& counters;
    ProcessReader& processes;
    HeavyReaders& heavy;
    MonitorConsumers& consumers;
  };

  static constexpr std::size_t kHistoryCount = 90;

  [[nodiscard]] static std::shared_ptr<Monitor> create(Environment environment);
  // The process-wide monitor that the composition root (app/services) built and installed.
  static Monitor& shared() { return SharedInstance<Monitor>::get(); }

  // Published state (main thread). Only apply() assigns it.
  Published<CPUSample> cpu;
  Published<MemorySample> memory;
  Published<NetSample> network;
  Published<std::vector<ProcessSample>> processes;
  Published<std::uint64_t> diskFreeBytes;
  Published<std::uint64_t> diskTotalBytes;
  Published<std::vector<double>> fans;
  Published<ThermalSample> thermal;
  Published<BatterySample> battery;
  Published<std::optional<GPUSample>> gpu;
  Published<std::vector<double>> gpuHistory;
  Published<std::vector<ProcessSample>> energyRows;
  Published<std::vector<double>> cpuHistory;
  Published<std::vector<double>> memHistory;
  Published<std::vector<double>> downHistory;  // KiB/s
  Published<std::vector<double>> upHistory;    // KiB/s
  Published<std::vector<double>> tempHistory;

  // Called once per applied snapshot, after cpu/memory/network are published.
  std::function<void()> onTick;
  // Called at the end of every apply with the whole snapshot (the JSON front end prints it).
  std::function<void(const Snapshot&)> onSnapshot;

  void start(double interval);
  // Restarts only when the interval changes by more than 0.01 s.
  void setInterval(double interval);
  void stop();
  void setPublishingPaused(bool paused);
  // The timer's action: starts one measurement unless one is in flight.
  void sample();
  void apply(const Snapshot& snapshot);

  // Appends value, then drops the oldest so that at most maxCount remain.
  static void appendHistory(std::vector<double>& history, double value, std::size_t maxCount);

  // Unix seconds of the boot, read at start; uptime in seconds (0 when the boot time is unknown).
  [[nodiscard]] std::optional<double> bootTime() const { return bootDate_; }
  [[nodiscard]] double uptime() const;

  [[nodiscard]] double refreshInterval() const { return refreshInterval_; }
  [[nodiscard]] bool isRunning() const { return timer_ != 0; }
  [[nodiscard]] bool isSampling() const { return isSampling_; }
  [[nodiscard]] bool publishingPaused() const { return publishingPaused_; }
  [[nodiscard]] std::uint64_t cycle() const { return cycle_; }
  [[nodiscard]] std::uint64_t tickCount() const { return tickCount_; }
  // The process list and temperatures of the last applied snapshot, also while the panel is
  // closed (the published values then stand still). A notification names its cause from them.
  [[nodiscard]] const std::vector<ProcessSample>& latestProcesses() const { return lastProcesses_; }
  [[nodiscard]] const ThermalSample& latestThermal() const { return lastThermal_; }

  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

 private:
  explicit Monitor(Environment environment);

  struct Plan {
    bool scanProcesses = false;
    bool heavySampling = false;
    bool collectTemp = false;
    bool collectAssertions = false;
  };
  Plan choosePlan();
  Snapshot collectSnapshot(const Plan& plan);                    // on the queue
  void logReadFailureOnce(bool& logged, std::string_view what);  // on the queue
  void publishHeavy(const Snapshot& snapshot);
  static void append(Published<std::vector<double>>& history, double value);

  Environment env_;

  // Main thread.
  double refreshInterval_ = 2.0;
  MainLoop::TimerId timer_ = 0;
  bool isSampling_ = false;
  std::optional<double> bootDate_;
  std::uint64_t cycle_ = 0;
  std::vector<ProcessSample> lastProcesses_;
  ThermalSample lastThermal_;
  bool publishingPaused_ = true;
  bool forceProcessScan_ = false;
  std::uint64_t tickCount_ = 0;

  // Queue only.
  double lastSampleTime_ = 0;
  bool cpuFailureLogged_ = false;
  bool memoryFailureLogged_ = false;
  SystemCounterTracker counters_;
  ProcessScanner scanner_;
  HeavyCache heavyCache_;
};

}  // namespace quillmark
