#pragma once

#include <deque>
#include <string>
#include <vector>

#include "sampling/monitor_hooks.h"
#include "sampling/process_scan.h"
#include "sampling/system_counters.h"

namespace quillmark::testing {

// Scripted system counters: each read pops the next scripted value (or repeats the last one) and
// counts the call.
class FakeSystemCounters final : public SystemCounters {
 public:
  CPUReading readCPU() override {
    ++cpuReads;
    return next(cpu);
  }
  std::optional<MemorySample> readMemory() override { return memory; }
  std::optional<NetCounters> readNetworkBytes() override {
    ++netReads;
    return next(net);
  }
  DiskSpace readDiskSpace() override {
    ++diskReads;
    return disk;
  }
  std::optional<double> readBootTime() override {
    ++bootReads;
    return bootTime;
  }
  std::string lastReadError() const override { return readError; }

  std::deque<CPUReading> cpu;
  std::optional<MemorySample> memory;
  std::deque<std::optional<NetCounters>> net;
  DiskSpace disk{100, 1000};
  std::optional<double> bootTime;
  std::string readError;
  int cpuReads = 0;
  int netReads = 0;
  int diskReads = 0;
  int bootReads = 0;

 private:
  template <class T>
  static T next(std::deque<T>& script) {
    if (script.empty()) return T{};
    T value = script.front();
    if (script.size() > 1) script.pop_front();
    return value;
  }
};

class FakeProcessReader final : public ProcessReader {
 public:
  std::vector<RawProcess> readProcessesRaw(NameCache& names) override {
    ++scans;
    std::vector<RawProcess> processes = table;
    for (auto& process : processes) {
      process.name = cachedName(names, process.pid, process.startTime, [&] {
        ++nameReads;
        return process.name;
      });
    }
    return processes;
  }
  void retainOnly(const PidSet& live) override { lastRetained = live; }

  std::vector<RawProcess> table;
  PidSet lastRetained;
  int scans = 0;
  int nameReads = 0;
};

class FakeHeavyReaders final : public HeavyReaders {
 public:
  std::vector<double> readFanSpeeds() override {
    ++fanReads;
    return fans;
  }
  ThermalSample readThermal() override {
    ++thermalReads;
    return thermal;
  }
  std::optional<BatterySample> readBattery() override { return battery; }
  std::optional<GPUSample> readGPU() override {
    ++gpuReads;
    return gpu;
  }
  std::vector<ProcessSample> energyRows(const std::vector<ProcessSample>& processes) override {
    ++energyCalls;
    return {processes.empty() ? ProcessSample{} : processes.front()};
  }
  AssertionMap readSleepBlockers() override {
    ++assertionReads;
    return {{42, {"PreventUserIdleSystemSleep"}}};
  }

  std::vector<double> fans{1200};
  ThermalSample thermal{50.0, std::nullopt, std::nullopt, std::nullopt};
  std::optional<BatterySample> battery;
  std::optional<GPUSample> gpu;
  int fanReads = 0, thermalReads = 0, gpuReads = 0, energyCalls = 0, assertionReads = 0;
};

// Records every hand-off as a line, so tests can check order and arguments.
class RecordingConsumers final : public MonitorConsumers {
 public:
  bool insightWantsProcessScan() override { return wantsScan; }
  bool alertsEnabled() override { return alerts; }
  bool historyWantsTempSample() override { return historyWantsTemp; }
  void evaluateAlerts(double, double, std::optional<double> tempC) override {
    calls.push_back("alerts");
    alertTemps.push_back(tempC);
  }
  void recordHistory(double, double, std::optional<double> tempC) override {
    calls.push_back("history");
    historyTemps.push_back(tempC);
  }
  void reconcilePausedGroups() override { calls.push_back("reconcile"); }
  void ingestInsights(const std::vector<ProcessSample>&,
                      const std::optional<AssertionMap>& assertions) override {
    calls.push_back(assertions ? "insights+assertions" : "insights");
  }
  void recordPins(const std::vector<ProcessSample>&) override { calls.push_back("pins"); }
  void pruneVisuals(const PidSet&) override { calls.push_back("prune"); }

  bool wantsScan = false;
  bool alerts = false;
  bool historyWantsTemp = false;
  std::vector<std::string> calls;
  std::vector<std::optional<double>> alertTemps;
  std::vector<std::optional<double>> historyTemps;
};

}  // namespace quillmark::testing
