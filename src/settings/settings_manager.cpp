#include "settings/settings_manager.h"

#include <algorithm>

#include "app/log.h"

namespace quillmark {
namespace {

// The load-time checks: each returns the stored value when it passes, else the default.

double intervalOrDefault(const DefaultsStore& d) {
  const auto v = d.getDouble("refreshInterval");
  return v && (*v == 1.0 || *v == 2.0 || *v == 5.0) ? *v : 2.0;
}

double positiveOr(const DefaultsStore& d, std::string_view key, double fallback) {
  const auto v = d.getDouble(key);
  return v && *v > 0 ? *v : fallback;
}

double comfortTargetOrDefault(const DefaultsStore& d) {
  const auto v = d.getDouble("comfortTargetC");
  return v && *v >= 35.0 && *v <= 42.0 ? *v : 38.0;
}

std::set<PanelModule> hiddenModulesOrDefault(const DefaultsStore& d) {
  std::set<PanelModule> modules;
  for (const std::string& raw : d.getStringArray("hiddenModules").value_or(std::vector<std::string>{})) {
    if (const auto module = panelModuleFromRaw(raw)) modules.insert(*module);
  }
  return modules;
}

MenuBarMode menuBarModeOrDefault(const DefaultsStore& d) {
  return menuBarModeFromRaw(d.getString("menuBarStyle").value_or("")).value_or(MenuBarMode::icon);
}

TempUnit tempUnitOrDefault(const DefaultsStore& d) {
  return tempUnitFromRaw(d.getString("tempUnit").value_or("")).value_or(TempUnit::celsius);
}

}  // namespace

SettingsManager::SettingsManager(DefaultsStore& defaults, std::function<void(double)> intervalSink,
                                 NotificationPermission& permission, LaunchAtLogin& loginItem)
    : defaults_(defaults),
      intervalSink_(std::move(intervalSink)),
      permission_(permission),
      launchAtLogin_(loginItem),
      lifetime_(std::make_shared<SettingsManager*>(this)),
      launchAtLogin(launchAtLogin_.isEnabled(), [this](bool v) { applyLaunchAtLogin(v); }),
      killWhitelist(defaults.getStringArray("killWhitelist").value_or(std::vector<std::string>{}),
                    [this](const std::vector<std::string>& v) { defaults_.set("killWhitelist", v); }),
      comfortEnabled(defaults.getBool("comfortEnabled").value_or(false),
                     [this](bool v) { defaults_.set("comfortEnabled", v); }),
      comfortTargetC(comfortTargetOrDefault(defaults),
                     [this](double v) { defaults_.set("comfortTargetC", v); }),
      refreshInterval(intervalOrDefault(defaults),
                      [this](double v) {
                        defaults_.set("refreshInterval", v);
                        if (intervalSink_) intervalSink_(v);
                      }),
      menuBarMode(menuBarModeOrDefault(defaults),
                  [this](MenuBarMode v) { defaults_.set("menuBarStyle", std::string(rawValue(v))); }),
      showNetSpeed(defaults.getBool("showNetSpeed").value_or(false),
                   [this](bool v) { defaults_.set("showNetSpeed", v); }),
      hiddenModules(hiddenModulesOrDefault(defaults),
                    [this](const std::set<PanelModule>& v) { storeHiddenModules(v); }),
      tempUnit(tempUnitOrDefault(defaults),
               [this](TempUnit v) { defaults_.set("tempUnit", std::string(rawValue(v))); }),
      alertsEnabled(defaults.getBool("alertsEnabled").value_or(false),
                    [this](bool v) { applyAlertsEnabled(v); }),
      cpuAlarmThreshold(positiveOr(defaults, "cpuAlarm", 85.0),
                        [this](double v) { defaults_.set("cpuAlarm", v); }),
      memAlarmThreshold(positiveOr(defaults, "memAlarm", 90.0),
                        [this](double v) { defaults_.set("memAlarm", v); }),
      tempAlarmThreshold(positiveOr(defaults, "tempAlarm", 85.0),
                         [this](double v) { defaults_.set("tempAlarm", v); }) {}

void SettingsManager::storeHiddenModules(const std::set<PanelModule>& modules) {
  std::vector<std::string> raw;
  for (const PanelModule module : modules) raw.emplace_back(rawValue(module));
  // Sorted by name, so the stored form does not depend on the enum's order.
  std::sort(raw.begin(), raw.end());
  defaults_.set("hiddenModules", std::move(raw));
}

void SettingsManager::applyLaunchAtLogin(bool enabled) {
  if (isSyncingLaunch_) return;
  // A failed change leaves the toggle showing a state the system does not have.
  if (!launchAtLogin_.set(enabled)) refreshLaunchAtLogin();
}

void SettingsManager::applyAlertsEnabled(bool enabled) {
  defaults_.set("alertsEnabled", enabled);
  if (!enabled || isSyncingAlerts_) return;
  std::weak_ptr<SettingsManager*> weak = lifetime_;
  permission_.requestAuthorization([weak](bool granted) {
    const auto alive = weak.lock();
    if (!alive || granted) return;
    SettingsManager& self = **alive;
    self.isSyncingAlerts_ = true;
    self.alertsEnabled.set(false);
    self.isSyncingAlerts_ = false;
    Log::debug("Notification permission denied; alert toggle reverted");
  });
}

bool SettingsManager::isVisible(PanelModule module) const { return !hiddenModules.value().contains(module); }

void SettingsManager::setVisible(PanelModule module, bool visible) {
  std::set<PanelModule> modules = hiddenModules.value();
  if (visible)
    modules.erase(module);
  else
    modules.insert(module);
  hiddenModules.set(std::move(modules));
}

bool SettingsManager::isPreauthorized(std::string_view name) const {
  const auto& list = killWhitelist.value();
  return std::find(list.begin(), list.end(), name) != list.end();
}

void SettingsManager::addPreauthorized(std::string_view name) {
  if (isPreauthorized(name)) return;
  std::vector<std::string> list = killWhitelist.value();
  list.emplace_back(name);
  killWhitelist.set(std::move(list));
}

bool SettingsManager::isFirstRun() const { return !defaults_.getBool(kHasLaunchedBeforeKey).value_or(false); }

void SettingsManager::markLaunched() { defaults_.set(kHasLaunchedBeforeKey, true); }

void SettingsManager::refreshLaunchAtLogin() {
  const bool actual = launchAtLogin_.isEnabled();
  if (actual == launchAtLogin.value()) return;
  isSyncingLaunch_ = true;
  launchAtLogin.set(actual);
  isSyncingLaunch_ = false;
}

}  // namespace quillmark
