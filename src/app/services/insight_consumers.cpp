#include "app/services/insight_consumers.h"

#include "insights/alert_manager.h"
#include "insights/insight_engine.h"
#include "sampling/history_store.h"
#include "settings/settings_manager.h"

namespace quillmark {

bool InsightConsumers::insightWantsProcessScan() {
  // An alert about to go out also wants a fresh scan, so it can name the process of that moment.
  return services_ && (services_->insights.wantsProcessScan() || services_->alerts.wantsProcessScan());
}

bool InsightConsumers::alertsEnabled() { return services_ && services_->settings.alertsEnabled(); }

bool InsightConsumers::historyWantsTempSample() { return services_ && services_->history.wantsTempSample(); }

void InsightConsumers::evaluateAlerts(double cpu, double memPct, std::optional<double> tempC) {
  if (services_) services_->alerts.evaluate(cpu, memPct, tempC);
}

void InsightConsumers::recordHistory(double cpu, double memPct, std::optional<double> tempC) {
  if (services_) services_->history.record(cpu, memPct, tempC);
}

void InsightConsumers::ingestInsights(const std::vector<ProcessSample>& processes,
                                      const std::optional<AssertionMap>& assertions) {
  if (services_) services_->insights.ingest(processes, assertions);
}

}  // namespace quillmark
