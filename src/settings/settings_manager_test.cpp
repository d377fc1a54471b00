#include "settings/settings_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "base/file_util.h"
#include "base/json_defaults_store.h"
#include "base/paths.h"
#include "settings/testing/fakes.h"
#include "settings/testing/temp_environment.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Strings = std::vector<std::string>;

class SettingsManagerTest : public ::testing::Test {
 protected:
  std::unique_ptr<SettingsManager> make() {
    return std::make_unique<SettingsManager>(
        store,
        [this](double v) {
          intervals.push_back(v);
          storedAtHandOff.push_back(store.getDouble("refreshInterval"));
        },
        permission, loginItem);
  }

  MemoryDefaultsStore store;
  std::vector<double> intervals;
  std::vector<std::optional<double>> storedAtHandOff;
  testing::FakePermission permission;
  testing::FakeLoginItems items;
  LaunchAtLogin loginItem{items};
};

// --- Loading: every key with invalid, boundary and valid values ---

TEST_F(SettingsManagerTest, EmptyStoreGivesTheDefaultsAndWritesNothing) {
  auto s = make();
  EXPECT_EQ(s->menuBarMode(), MenuBarMode::icon);
  EXPECT_FALSE(s->showNetSpeed() || s->launchAtLogin() || s->alertsEnabled() || s->comfortEnabled());
  EXPECT_TRUE(s->hiddenModules().empty() && s->killWhitelist().empty());
  EXPECT_EQ(s->surfaceSensor(), "");
  EXPECT_TRUE(s->isFirstRun());
  EXPECT_EQ(store.writeCount(), 0);
  EXPECT_TRUE(intervals.empty());
}

// Each number alone under its key: what loads, and the default for anything out of range or of
// another kind. A rejected value is left in the store as it was.
TEST_F(SettingsManagerTest, NumbersOutOfRangeOrOfAnotherKindLoadAsTheDefault) {
  struct Case {
    const char* key;
    double (*get)(const SettingsManager&);
    double fallback;
    std::vector<double> bad, good;
  };
  const Case cases[] = {
      {"refreshInterval",
       [](const SettingsManager& s) { return s.refreshInterval(); },
       2.0,
       {3.0, 0.5, 0.0, -2.0, 2.0000001, 10.0},
       {1.0, 2.0, 5.0}},
      {"comfortTargetC",
       [](const SettingsManager& s) { return s.comfortTargetC(); },
       38.0,
       {34.9, 42.1, 0.0, -40.0},
       {35.0, 42.0, 39.5}},
      // The alarm keys are short; the property names ("cpuAlarmThreshold") are not keys.
      {"cpuAlarm", [](const SettingsManager& s) { return s.cpuAlarmThreshold(); }, 85.0, {0.0, -5.0}, {1.0}},
      {"memAlarm", [](const SettingsManager& s) { return s.memAlarmThreshold(); }, 90.0, {0.0, -5.0}, {0.5}},
      {"tempAlarm", [](const SettingsManager& s) { return s.tempAlarmThreshold(); }, 85.0, {0.0}, {70.0}},
  };
  store.set("cpuAlarmThreshold", 10.0);
  for (const Case& c : cases) {
    for (const double bad : c.bad) {
      store.set(c.key, bad);
      const int writes = store.writeCount();
      EXPECT_EQ(c.get(*make()), c.fallback) << c.key << " " << bad;
      EXPECT_EQ(store.getDouble(c.key), bad);
      EXPECT_EQ(store.writeCount(), writes);
    }
    for (const double good : c.good) {
      store.set(c.key, good);
      EXPECT_EQ(c.get(*make()), good) << c.key;
    }
    store.set(c.key, std::string("5"));
    EXPECT_EQ(c.get(*make()), c.fallback) << c.key;
  }
}

TEST_F(SettingsManagerTest, HiddenModulesDropUnknownNames) {
  store.set("hiddenModules", Strings{"power", "warp-drive", "gpu", "GPU"});
  auto s = make();
  EXPECT_EQ(s->hiddenModules(), (std::set<PanelModule>{PanelModule::power, PanelModule::gpu}));
  EXPECT_FALSE(s->isVisible(PanelModule::gpu));
  EXPECT_TRUE(s->isVisible(PanelModule::memory));
  store.set("hiddenModules", std::string("gpu"));
  EXPECT_TRUE(make()->hiddenModules().empty());
}

TEST_F(SettingsManagerTest, BooleansAndStringsMustBeStoredAsSuch) {
  store.set("showNetSpeed", std::string("true"));
  store.set("alertsEnabled", 1.0);
  store.set("comfortEnabled", Strings{"yes"});
  store.set("surfaceSensor", 3.0);
  auto s = make();
  EXPECT_FALSE(s->showNetSpeed());
  EXPECT_FALSE(s->alertsEnabled());
  EXPECT_FALSE(s->comfortEnabled());
  EXPECT_EQ(s->surfaceSensor(), "");
  store.set("surfaceSensor", std::string("thinkpad/temp3"));
  store.set("showNetSpeed", true);
  store.set("alertsEnabled", true);
  store.set("comfortEnabled", true);
  s = make();
  EXPECT_TRUE(s->showNetSpeed());
  EXPECT_TRUE(s->alertsEnabled());
  EXPECT_TRUE(s->comfortEnabled());
  EXPECT_EQ(s->surfaceSensor(), "thinkpad/temp3");
  EXPECT_EQ(permission.requests, 0);  // loading an enabled toggle asks nothing
}

TEST_F(SettingsManagerTest, EnumerationsReadOnlyTheirExactRawValue) {
  store.set("menuBarMode", std::string("text"));  // the key is "menuBarStyle"
  EXPECT_EQ(make()->menuBarMode(), MenuBarMode::icon);
  store.set("menuBarStyle", std::string("Text"));
  store.set("tempUnit", std::string("Fahrenheit"));
  EXPECT_EQ(make()->menuBarMode(), MenuBarMode::icon);
  EXPECT_EQ(make()->tempUnit(), TempUnit::celsius);
  store.set("menuBarStyle", std::string("text"));
  store.set("tempUnit", std::string("fahrenheit"));
  EXPECT_EQ(make()->menuBarMode(), MenuBarMode::text);
  EXPECT_EQ(make()->tempUnit(), TempUnit::fahrenheit);
}

TEST_F(SettingsManagerTest, RejectedStoredValuesAndADamagedFileAreLoggedOnceEach) {
  const std::string dir = testing::makeTempDirectory();
  testing::writeTestFile(dir + "/settings.json", R"({"refreshInterval": 3, "showNetSpeed": "yes",
      "killWhitelist": [1, "x"], "cpuAlarm": null, "hiddenModules": ["gpu", "warp"], "menuBarStyle": "text"})");
  testing::writeTestFile(dir + "/damaged/settings.json", "{");
  const std::size_t before = readWholeFile(logFilePath()).value_or("").size();
  JsonDefaultsStore json(dir + "/settings.json");
  JsonDefaultsStore damaged(dir + "/damaged/settings.json");
  (void)SettingsManager(json, {}, permission, loginItem);
  (void)SettingsManager(damaged, {}, permission, loginItem);
  const std::string log = readWholeFile(logFilePath()).value_or("").substr(before);
  const auto count = [&log](const std::string& needle) {
    std::size_t n = 0;
    for (auto at = log.find(needle); at != std::string::npos; at = log.find(needle, at + 1)) ++n;
    return n;
  };
  for (const char* key : {"refreshInterval", "showNetSpeed", "killWhitelist", "cpuAlarm", "hiddenModules"}) {
    EXPECT_EQ(count("Stored setting \"" + std::string(key) + "\""), 1u) << key << "\n" << log;
  }
  EXPECT_EQ(count("menuBarStyle"), 0u);
  EXPECT_EQ(count("copy kept at " + damaged.setAsidePath()), 1u) << log;
}

// --- Stored forms after each assignment ---

TEST_F(SettingsManagerTest, EachAssignmentIsStoredAtOnceUnderItsKey) {
  auto s = make();
  s->refreshInterval.set(5.0);
  s->menuBarMode.set(MenuBarMode::text);
  s->showNetSpeed.set(true);
  s->tempUnit.set(TempUnit::fahrenheit);
  s->cpuAlarmThreshold.set(70.0);
  s->memAlarmThreshold.set(-1.0);  // assigning does not validate
  s->tempAlarmThreshold.set(95.0);
  s->comfortEnabled.set(true);
  s->comfortTargetC.set(40.0);
  s->killWhitelist.set({"b", "a"});
  s->surfaceSensor.set("acpitz/temp1");
  EXPECT_EQ(store.getDouble("refreshInterval"), 5.0);
  EXPECT_EQ(store.getString("menuBarStyle"), "text");
  EXPECT_EQ(store.getBool("showNetSpeed"), true);
  EXPECT_EQ(store.getString("tempUnit"), "fahrenheit");
  EXPECT_EQ(store.getDouble("cpuAlarm"), 70.0);
  EXPECT_EQ(store.getDouble("memAlarm"), -1.0);
  EXPECT_EQ(store.getDouble("tempAlarm"), 95.0);
  EXPECT_EQ(store.getBool("comfortEnabled"), true);
  EXPECT_EQ(store.getDouble("comfortTargetC"), 40.0);
  EXPECT_EQ(store.getStringArray("killWhitelist"), (Strings{"b", "a"}));
  EXPECT_EQ(store.getString("surfaceSensor"), "acpitz/temp1");
  EXPECT_FALSE(store.get("launchAtLogin"));

  auto reloaded = make();
  EXPECT_EQ(reloaded->refreshInterval(), 5.0);
  EXPECT_EQ(reloaded->menuBarMode(), MenuBarMode::text);
  EXPECT_EQ(reloaded->tempUnit(), TempUnit::fahrenheit);
  EXPECT_EQ(reloaded->memAlarmThreshold(), 90.0);  // but loading does
}

TEST_F(SettingsManagerTest, RefreshIntervalIsHandedToTheSamplerAfterStoring) {
  auto s = make();
  s->refreshInterval.set(1.0);
  s->refreshInterval.set(5.0);
  EXPECT_THAT(intervals, ElementsAre(1.0, 5.0));
  EXPECT_THAT(storedAtHandOff, ElementsAre(1.0, 5.0));
}

TEST_F(SettingsManagerTest, HiddenModulesAreStoredSortedByName) {
  store.set("hiddenModules", Strings{"power", "unknown", "gpu"});
  auto s = make();
  s->setVisible(PanelModule::thermal, false);
  EXPECT_EQ(store.getStringArray("hiddenModules"), (Strings{"gpu", "power", "thermal"}));
  s->setVisible(PanelModule::power, true);
  s->setVisible(PanelModule::memory, false);
  EXPECT_EQ(store.getStringArray("hiddenModules"), (Strings{"gpu", "memory", "thermal"}));
  EXPECT_FALSE(s->isVisible(PanelModule::memory));
  EXPECT_TRUE(s->isVisible(PanelModule::power));
}

TEST_F(SettingsManagerTest, PreauthorizedNamesMatchExactlyAndAreAddedOnce) {
  auto s = make();
  s->addPreauthorized("Safari");
  s->addPreauthorized("safari");
  EXPECT_EQ(store.getStringArray("killWhitelist"), (Strings{"Safari", "safari"}));
  const int writes = store.writeCount();
  s->addPreauthorized("Safari");
  EXPECT_EQ(store.writeCount(), writes);
  EXPECT_TRUE(s->isPreauthorized("Safari"));
  EXPECT_FALSE(s->isPreauthorized("Safar"));
  EXPECT_FALSE(s->isPreauthorized("SAFARI"));
}

TEST_F(SettingsManagerTest, FirstRunEndsWithMarkLaunched) {
  store.set("hasLaunchedBefore", std::string("yes"));
  auto s = make();
  EXPECT_TRUE(s->isFirstRun());
  s->markLaunched();
  EXPECT_FALSE(s->isFirstRun());
  EXPECT_EQ(store.getBool("hasLaunchedBefore"), true);
  EXPECT_FALSE(make()->isFirstRun());
}

// --- Notification permission ---

TEST_F(SettingsManagerTest, GrantedPermissionKeepsAlertsOnAndOffAsksNothing) {
  auto s = make();
  s->alertsEnabled.set(true);
  EXPECT_TRUE(s->alertsEnabled());
  s->alertsEnabled.set(false);
  EXPECT_EQ(store.getBool("alertsEnabled"), false);
  EXPECT_EQ(permission.requests, 1);
}

TEST_F(SettingsManagerTest, RefusedPermissionTurnsAlertsBackOffAfterAskingOnce) {
  permission.answer = false;
  auto s = make();
  std::vector<bool> seen;
  (void)s->alertsEnabled.subscribe([&](const bool& v) { seen.push_back(v); });
  s->alertsEnabled.set(true);
  EXPECT_FALSE(s->alertsEnabled());
  EXPECT_EQ(store.getBool("alertsEnabled"), false);
  EXPECT_EQ(permission.requests, 1);
  EXPECT_THAT(seen, ElementsAre(true, false));
  const auto log = readWholeFile(logFilePath());
  ASSERT_TRUE(log);
  EXPECT_THAT(*log, HasSubstr("Notification permission denied; alert toggle reverted"));
}

TEST_F(SettingsManagerTest, LateRefusalRevertsAndAnAnswerAfterTheStoreIsGoneIsIgnored) {
  permission.answer = false;
  permission.answerLater = true;
  auto s = make();
  s->alertsEnabled.set(true);
  EXPECT_TRUE(s->alertsEnabled());  // still waiting for the answer
  permission.pending.at(0)(false);
  EXPECT_FALSE(s->alertsEnabled());
  EXPECT_EQ(permission.requests, 1);

  s->alertsEnabled.set(true);
  s.reset();
  permission.pending.at(1)(false);  // must not touch the destroyed store (ASan watches)
  EXPECT_EQ(store.getBool("alertsEnabled"), true);
}

// --- Launch at login ---

TEST_F(SettingsManagerTest, AFailedOrUnapprovedRegistrationSnapsTheToggleBack) {
  for (const bool approval : {false, true}) {
    testing::FakeLoginItems service;
    if (approval)
      service.statusAfterRegister = LoginItemService::kRequiresApproval;
    else
      service.registerError = "The operation couldn't be completed.";
    LaunchAtLogin login{service};
    SettingsManager s(store, {}, permission, login);
    std::vector<bool> seen;
    (void)s.launchAtLogin.subscribe([&](const bool& v) { seen.push_back(v); });
    s.launchAtLogin.set(true);
    EXPECT_FALSE(s.launchAtLogin());
    EXPECT_THAT(seen, ElementsAre(true, false));
    EXPECT_EQ(service.registerCalls, 1);
    EXPECT_EQ(service.unregisterCalls, 0);  // the snap-back does not call the service
  }
}

TEST_F(SettingsManagerTest, LaunchAtLoginFollowsTheSystemNotTheStore) {
  store.set("launchAtLogin", true);  // never stored; a stale key must not matter
  items.current = LoginItemService::kRequiresApproval;
  auto s = make();
  EXPECT_FALSE(s->launchAtLogin());
  s->launchAtLogin.set(true);
  EXPECT_EQ(items.current, LoginItemService::kEnabled);
  s->launchAtLogin.set(false);
  EXPECT_EQ(items.current, LoginItemService::kNotRegistered);
  items.registerCalls = items.unregisterCalls = 0;

  int notifications = 0;
  (void)s->launchAtLogin.subscribe([&](const bool&) { ++notifications; });
  // A change made outside (System Settings) is published without calling the service.
  s->refreshLaunchAtLogin();
  EXPECT_EQ(notifications, 0);
  items.current = LoginItemService::kEnabled;
  s->refreshLaunchAtLogin();
  EXPECT_TRUE(s->launchAtLogin());
  EXPECT_EQ(notifications, 1);
  EXPECT_EQ(items.registerCalls + items.unregisterCalls, 0);
}

}  // namespace
}  // namespace quillmark
