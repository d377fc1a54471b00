#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "base/shared_instance.h"
#include "insights/notification_center.h"
#include "sampling/samples.h"
#include "settings/notification_permission.h"

namespace quillmark {

class L10n;
class SettingsManager;

// Raises a notification when CPU load, memory use or temperature stays at or above the user's
// threshold for three samples in a row: one per excursion, re-armed by a single sample below. Each
// notification names its cause (the busiest process, the largest process, the hottest sensor)
// from the sampling engine's latest figures. It is also the permission the settings store asks
// when alerts are turned on. Percentages 0-100, temperatures °C. Main thread only.
class AlertManager final : public NotificationPermission {
 public:
  enum class Metric { cpu, memory, temperature };
  struct State {
    int overCount = 0;     // consecutive samples at or above the threshold
    bool alerted = false;  // a notification went out for this excursion
    bool operator==(const State&) const = default;
  };
  // What the sampling engine measured last, read only when a notification is about to go out.
  struct Context {
    std::vector<ProcessSample> processes;
    ThermalSample thermal;
  };
  static constexpr int kSustainTicks = 3;

  struct Environment {
    NotificationCenter& center;
    const SettingsManager& settings;
    const L10n& l10n;
    std::function<Context()> context;
  };

  explicit AlertManager(Environment environment);
  AlertManager(const AlertManager&) = delete;
  AlertManager& operator=(const AlertManager&) = delete;

  static AlertManager& shared() { return SharedInstance<AlertManager>::get(); }

  // Opens the panel; set by whoever owns it. A click on a notification calls it.
  std::function<void()> panelOpener;

  // Takes over the notification centre (clearing what an earlier run left). Once, at start.
  void activate();
  void requestAuthorization(std::function<void(bool granted)> completion) override;
  // One applied snapshot. Does nothing while alerts are off (the counts stay as they are).
  void evaluate(double cpu, double memPct, std::optional<double> tempC);
  // True when the next CPU or memory sample may send an alert: the engine scans processes then,
  // so the alert can name the process at that moment.
  [[nodiscard]] bool wantsProcessScan() const;

  [[nodiscard]] State state(Metric metric) const;
  [[nodiscard]] static std::string_view rawValue(Metric metric);

 private:
  void step(Metric metric, double value, double threshold);
  void fire(Metric metric, double value, double threshold);
  [[nodiscard]] std::string cause(Metric metric) const;

  Environment env_;
  std::map<Metric, State> states_;
};

}  // namespace quillmark
