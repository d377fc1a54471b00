#pragma once

#include <optional>
#include <vector>

#include "sampling/monitor_hooks.h"

namespace quillmark {

class AlertManager;
class HistoryStore;
class InsightEngine;
class SettingsManager;

// The monitor's hooks for the alert manager, the history store and the insight engine: each
// question and hand-off goes to its service. The process hooks of the other services
// (reconcilePausedGroups, recordPins, pruneVisuals) go on to `others`. Until connect() every hook
// of ours does nothing, so the monitor can be built before the services it feeds. Main thread only.
class InsightConsumers final : public MonitorConsumers {
 public:
  struct Services {
    HistoryStore& history;
    InsightEngine& insights;
    AlertManager& alerts;
    const SettingsManager& settings;
  };

  explicit InsightConsumers(MonitorConsumers& others) : others_(others) {}

  void connect(const Services& services) { services_.emplace(services); }
  void disconnect() { services_.reset(); }

  bool insightWantsProcessScan() override;
  bool alertsEnabled() override;
  bool historyWantsTempSample() override;
  void evaluateAlerts(double cpu, double memPct, std::optional<double> tempC) override;
  void recordHistory(double cpu, double memPct, std::optional<double> tempC) override;
  void ingestInsights(const std::vector<ProcessSample>& processes,
                      const std::optional<AssertionMap>& assertions) override;

  void reconcilePausedGroups() override { others_.reconcilePausedGroups(); }
  void recordPins(const std::vector<ProcessSample>& processes) override { others_.recordPins(processes); }
  void pruneVisuals(const PidSet& livePids) override { others_.pruneVisuals(livePids); }

 private:
  MonitorConsumers& others_;
  std::optional<Services> services_;
};

}  // namespace quillmark
