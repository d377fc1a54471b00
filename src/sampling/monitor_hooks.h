#pragma once

#include <optional>
#include <vector>

#include "sampling/samples.h"

namespace quillmark {

// The expensive readers Monitor runs while the panel is open (temperatures also on demand). Each
// reports "nothing" until the sensor code that implements it is connected. Called on the
// monitor's queue only.
class HeavyReaders {
 public:
  virtual ~HeavyReaders() = default;
  [[nodiscard]] virtual std::vector<double> readFanSpeeds() { return {}; }
  [[nodiscard]] virtual ThermalSample readThermal() { return {}; }
  [[nodiscard]] virtual std::optional<BatterySample> readBattery() { return std::nullopt; }
  [[nodiscard]] virtual std::optional<GPUSample> readGPU() { return std::nullopt; }
  [[nodiscard]] virtual std::vector<ProcessSample> energyRows(const std::vector<ProcessSample>& processes) {
    (void)processes;
    return {};
  }
  [[nodiscard]] virtual AssertionMap readSleepBlockers() { return {}; }
};

// What Monitor asks of and hands to the rest of the program on the main thread: the alert
// manager, the history store, the pause manager, the insight engine, the pin store and the
// process visual cache. Every hook does nothing until its owner is connected.
class MonitorConsumers {
 public:
  virtual ~MonitorConsumers() = default;

  // Questions asked when a closed-panel tick chooses its plan.
  [[nodiscard]] virtual bool insightWantsProcessScan() { return false; }
  [[nodiscard]] virtual bool alertsEnabled() { return false; }
  [[nodiscard]] virtual bool historyWantsTempSample() { return false; }

  // Hand-offs of an applied snapshot, in the order Monitor calls them.
  virtual void evaluateAlerts(double cpu, double memPct, std::optional<double> tempC) {
    (void)cpu, (void)memPct, (void)tempC;
  }
  virtual void recordHistory(double cpu, double memPct, std::optional<double> tempC) {
    (void)cpu, (void)memPct, (void)tempC;
  }
  virtual void reconcilePausedGroups() {}
  virtual void ingestInsights(const std::vector<ProcessSample>& processes,
                              const std::optional<AssertionMap>& assertions) {
    (void)processes, (void)assertions;
  }
  virtual void recordPins(const std::vector<ProcessSample>& processes) { (void)processes; }
  virtual void pruneVisuals(const PidSet& livePids) { (void)livePids; }
};

}  // namespace quillmark
