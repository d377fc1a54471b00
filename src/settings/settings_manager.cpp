#include "settings/settings_manager.h"

#include <algorithm>

#include "base/log.h"

namespace quillmark {
namespace {

// The load-time checks: each returns the stored value when it passes, else the default. A value
// that is stored but rejected is said in the log with its key, once per load, so a hand edit that
// had no effect can be explained.

// The default for a value that did not pass; said in the log when something was stored.
template <class T>
T rejected(const DefaultsStore& d, std::string_view key, T fallback) {
  if (d.contains(key)) {
    Log::debug("Stored setting \"" + std::string(key) +
               "\" is of the wrong kind or out of range; default used");
  }
  return fallback;
}

template <class T>
T acceptedOr(const DefaultsStore& d, std::string_view key, std::optional<T> accepted, T fallback) {
  return accepted ? std::move(*accepted) : rejected(d, key, std::move(fallback));
}

bool boolOr(const DefaultsStore& d, std::string_view key, bool fallback) {
  return acceptedOr(d, key, d.getBool(key), fallback);
}

double intervalOrDefault(const DefaultsStore& d) {
  const auto v = d.getDouble("refreshInterval");
  if (v && (*v == 1.0 || *v == 2.0 || *v == 5.0)) return *v;
  return rejected(d, "refreshInterval", 2.0);
}

double positiveOr(const DefaultsStore& d, std::string_view key, double fallback) {
  const auto v = d.getDouble(key);
  return acceptedOr(d, key, v && *v > 0 ? v : std::nullopt, fallback);
}

double comfortTargetOrDefault(const DefaultsStore& d) {
  const auto v = d.getDouble("comfortTargetC");
  if (v && *v >= 35.0 && *v <= 42.0) return *v;
  return rejected(d, "comfortTargetC", 38.0);
}

std::set<PanelModule> hiddenModulesOrDefault(const DefaultsStore& d) {
  // Unknown names are dropped and the known ones kept (a newer version may have added modules).
  std::optional<std::set<PanelModule>> modules;
  if (const auto raw = d.getStringArray("hiddenModules")) {
    modules.emplace();
    bool unknown = false;
    for (const std::string& name : *raw) {
      const auto module = panelModuleFromRaw(name);
      if (module)
        modules->insert(*module);
      else
        unknown = true;
    }
    if (unknown) {
      Log::debug("Stored setting \"hiddenModules\" names unknown modules; they are ignored");
    }
  }
  return acceptedOr(d, "hiddenModules", std::move(modules), std::set<PanelModule>{});
}

MenuBarMode menuBarModeOrDefault(const DefaultsStore& d) {
  const auto raw = d.getString("menuBarStyle");
  return acceptedOr(d, "menuBarStyle", raw ? menuBarModeFromRaw(*raw) : std::nullopt, MenuBarMode::icon);
}

TempUnit tempUnitOrDefault(const DefaultsStore& d) {
  const auto raw = d.getString("tempUnit");
  return acceptedOr(d, "tempUnit", raw ? tempUnitFromRaw(*raw) : std::nullopt, TempUnit::celsius);
}

// Runs first in the constructor, so the store's own problems precede those of single values.
const DefaultsStore& logStoreProblems(const DefaultsStore& d) {
  for (const std::string& problem : d.loadProblems()) Log::debug(problem);
  return d;
}

}  // namespace

SettingsManager::SettingsManager(DefaultsStore& defaults, std::function<void(double)> intervalSink,
                                 NotificationPermission& permission, LaunchAtLogin& loginItem)
    : defaults_(defaults),
      intervalSink_(std::move(intervalSink)),
      permission_(permission),
      launchAtLogin_(loginItem),
      lifetime_(std::make_shared<SettingsManager*>(this)),
      launchAtLogin((logStoreProblems(defaults), launchAtLogin_.isEnabled()),
                    [this](bool v) { applyLaunchAtLogin(v); }),
      killWhitelist(acceptedOr(defaults, "killWhitelist", defaults.getStringArray("killWhitelist"),
                               std::vector<std::string>{}),
                    [this](const std::vector<std::string>& v) { defaults_.set("killWhitelist", v); }),
      comfortEnabled(boolOr(defaults, "comfortEnabled", false),
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
      showNetSpeed(boolOr(defaults, "showNetSpeed", false),
                   [this](bool v) { defaults_.set("showNetSpeed", v); }),
      hiddenModules(hiddenModulesOrDefault(defaults),
                    [this](const std::set<PanelModule>& v) { storeHiddenModules(v); }),
      tempUnit(tempUnitOrDefault(defaults),
               [this](TempUnit v) { defaults_.set("tempUnit", std::string(rawValue(v))); }),
      alertsEnabled(boolOr(defaults, "alertsEnabled", false), [this](bool v) { applyAlertsEnabled(v); }),
      cpuAlarmThreshold(positiveOr(defaults, "cpuAlarm", 85.0),
                        [this](double v) { defaults_.set("cpuAlarm", v); }),
      memAlarmThreshold(positiveOr(defaults, "memAlarm", 90.0),
                        [this](double v) { defaults_.set("memAlarm", v); }),
      tempAlarmThreshold(positiveOr(defaults, "tempAlarm", 85.0),
                         [this](double v) { defaults_.set("tempAlarm", v); }),
      surfaceSensor(acceptedOr(defaults, "surfaceSensor", defaults.getString("surfaceSensor"), std::string()),
                    [this](const std::string& v) { defaults_.set("surfaceSensor", v); }) {}

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
