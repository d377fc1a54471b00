#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/defaults_store.h"
#include "base/shared_instance.h"
#include "settings/launch_at_login.h"
#include "settings/notification_permission.h"
#include "settings/setting.h"
#include "settings/settings_types.h"

namespace quillmark {

// The user's preferences: loaded once from the defaults store (a stored value that is missing,
// of the wrong kind or out of range falls back to its default), published for views and
// controllers, and written back at the moment each one is assigned. Only loading validates;
// assigning stores what it is given (the views offer only valid values).
//
// Launch at login is not stored: the system's login-item registry is its truth, and a failed
// change snaps the toggle back to it. Turning alerts on asks for notification permission and
// turns them off again (stored off) if it is refused.
//
// Main thread only.
class SettingsManager {
 private:
  // Collaborators first: the settings' side effects use them, and members initialise in order.
  DefaultsStore& defaults_;
  std::function<void(double)> intervalSink_;
  NotificationPermission& permission_;
  LaunchAtLogin& launchAtLogin_;
  bool isSyncingLaunch_ = false;  // set while the store itself corrects launchAtLogin
  bool isSyncingAlerts_ = false;  // set while the store itself turns alertsEnabled back off
  // Lets a permission answer that arrives after the store is gone do nothing.
  std::shared_ptr<SettingsManager*> lifetime_;

 public:
  // intervalSink receives every assigned refresh interval (the sampling engine's setInterval).
  SettingsManager(DefaultsStore& defaults, std::function<void(double)> intervalSink,
                  NotificationPermission& permission, LaunchAtLogin& loginItem);
  SettingsManager(const SettingsManager&) = delete;
  SettingsManager& operator=(const SettingsManager&) = delete;

  // The process-wide settings that the composition root (app/services) built and installed.
  static SettingsManager& shared() { return SharedInstance<SettingsManager>::get(); }

  // In the order they are read at start.
  Setting<bool> launchAtLogin;                      // not stored; the login item's state
  Setting<std::vector<std::string>> killWhitelist;  // "killWhitelist", order kept
  Setting<bool> comfortEnabled;                     // "comfortEnabled"
  Setting<double> comfortTargetC;                   // "comfortTargetC", 35...42 °C, default 38
  Setting<double> refreshInterval;                  // "refreshInterval", 1, 2 or 5 s, default 2
  Setting<MenuBarMode> menuBarMode;                 // "menuBarStyle"
  Setting<bool> showNetSpeed;                       // "showNetSpeed"
  Setting<std::set<PanelModule>> hiddenModules;     // "hiddenModules", stored sorted
  Setting<TempUnit> tempUnit;                       // "tempUnit"
  Setting<bool> alertsEnabled;                      // "alertsEnabled"
  Setting<double> cpuAlarmThreshold;                // "cpuAlarm", percent > 0, default 85
  Setting<double> memAlarmThreshold;                // "memAlarm", percent > 0, default 90
  Setting<double> tempAlarmThreshold;               // "tempAlarm", °C > 0, default 85
  // "surfaceSensor": the temperature sensor that stands for the palm rest on Linux, as
  // "chip/attribute" ("thinkpad/temp3"); default empty, meaning no surface temperature.
  Setting<std::string> surfaceSensor;

  [[nodiscard]] bool isVisible(PanelModule module) const;
  void setVisible(PanelModule module, bool visible);

  // Exact, case-sensitive comparison of the whole process name.
  [[nodiscard]] bool isPreauthorized(std::string_view name) const;
  // Appends the name (and stores the list) unless it is already there.
  void addPreauthorized(std::string_view name);

  // True until markLaunched() has been called once, in this or an earlier run.
  [[nodiscard]] bool isFirstRun() const;
  void markLaunched();

  // Re-reads the login item (it may have been changed in the system settings) and publishes the
  // real state if it differs, without asking the service to change anything.
  void refreshLaunchAtLogin();

  static constexpr std::string_view kHasLaunchedBeforeKey = "hasLaunchedBefore";

 private:
  void applyLaunchAtLogin(bool enabled);
  void applyAlertsEnabled(bool enabled);
  void storeHiddenModules(const std::set<PanelModule>& modules);
};

}  // namespace quillmark
