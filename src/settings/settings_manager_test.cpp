#include "settings/settings_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "base/file_util.h"
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

TEST_F(SettingsManagerTest, EmptyStoreGivesEveryDefaultAndWritesNothing) {
  auto s = make();
  EXPECT_EQ(s->refreshInterval(), 2.0);
  EXPECT_EQ(s->menuBarMode(), MenuBarMode::icon);
  EXPECT_FALSE(s->showNetSpeed());
  EXPECT_TRUE(s->hiddenModules().empty());
  EXPECT_EQ(s->tempUnit(), TempUnit::celsius);
  EXPECT_FALSE(s->launchAtLogin());
  EXPECT_FALSE(s->alertsEnabled());
  EXPECT_EQ(s->cpuAlarmThreshold(), 85.0);
  EXPECT_EQ(s->memAlarmThreshold(), 90.0);
  EXPECT_EQ(s->tempAlarmThreshold(), 85.0);
  EXPECT_TRUE(s->killWhitelist().empty());
  EXPECT_FALSE(s->comfortEnabled());
  EXPECT_EQ(s->comfortTargetC(), 38.0);
  EXPECT_TRUE(s->isFirstRun());
  EXPECT_EQ(store.writeCount(), 0);
  EXPECT_TRUE(intervals.empty());
}

TEST_F(SettingsManagerTest, RefreshIntervalAcceptsOnlyOneTwoOrFive) {
  for (const double bad : {3.0, 0.5, 0.0, -2.0, 2.0000001, 10.0}) {
    store.set("refreshInterval", bad);
    EXPECT_EQ(make()->refreshInterval(), 2.0) << bad;
  }
  for (const double good : {1.0, 2.0, 5.0}) {
    store.set("refreshInterval", good);
    EXPECT_EQ(make()->refreshInterval(), good);
  }
  store.set("refreshInterval", std::string("5"));
  EXPECT_EQ(make()->refreshInterval(), 2.0);
}

TEST_F(SettingsManagerTest, RejectedValueIsNotWrittenBackAtLoad) {
  store.set("refreshInterval", 3.0);
  const int writes = store.writeCount();
  (void)make();
  EXPECT_EQ(store.getDouble("refreshInterval"), 3.0);
  EXPECT_EQ(store.writeCount(), writes);
}

TEST_F(SettingsManagerTest, ComfortTargetBoundsAreInclusive) {
  for (const double bad : {34.9, 42.1, 0.0, -40.0}) {
    store.set("comfortTargetC", bad);
    EXPECT_EQ(make()->comfortTargetC(), 38.0) << bad;
  }
  for (const double good : {35.0, 42.0, 39.5}) {
    store.set("comfortTargetC", good);
    EXPECT_EQ(make()->comfortTargetC(), good);
  }
}

TEST_F(SettingsManagerTest, AlarmThresholdsUseShortKeysAndMustBePositive) {
  store.set("cpuAlarmThreshold", 10.0);  // the property name is not the key
  EXPECT_EQ(make()->cpuAlarmThreshold(), 85.0);
  for (const double bad : {0.0, -5.0}) {
    store.set("cpuAlarm", bad);
    store.set("memAlarm", bad);
    store.set("tempAlarm", bad);
    auto s = make();
    EXPECT_EQ(s->cpuAlarmThreshold(), 85.0);
    EXPECT_EQ(s->memAlarmThreshold(), 90.0);
    EXPECT_EQ(s->tempAlarmThreshold(), 85.0);
  }
  store.set("cpuAlarm", 1.0);
  store.set("memAlarm", 0.5);
  store.set("tempAlarm", std::string("70"));
  auto s = make();
  EXPECT_EQ(s->cpuAlarmThreshold(), 1.0);
  EXPECT_EQ(s->memAlarmThreshold(), 0.5);
  EXPECT_EQ(s->tempAlarmThreshold(), 85.0);
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

TEST_F(SettingsManagerTest, BooleansMustBeStoredAsBooleans) {
  store.set("showNetSpeed", std::string("true"));
  store.set("alertsEnabled", 1.0);
  store.set("comfortEnabled", Strings{"yes"});
  auto s = make();
  EXPECT_FALSE(s->showNetSpeed());
  EXPECT_FALSE(s->alertsEnabled());
  EXPECT_FALSE(s->comfortEnabled());
  store.set("showNetSpeed", true);
  store.set("alertsEnabled", true);
  store.set("comfortEnabled", true);
  s = make();
  EXPECT_TRUE(s->showNetSpeed());
  EXPECT_TRUE(s->alertsEnabled());
  EXPECT_TRUE(s->comfortEnabled());
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

TEST_F(SettingsManagerTest, LaunchAtLoginIsReadFromTheSystem) {
  store.set("launchAtLogin", false);  // never stored; a stale key must not matter
  items.current = LoginItemService::kEnabled;
  EXPECT_TRUE(make()->launchAtLogin());
  items.current = LoginItemService::kRequiresApproval;
  EXPECT_FALSE(make()->launchAtLogin());
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

TEST_F(SettingsManagerTest, SubscribersSeeTheNewValue) {
  auto s = make();
  std::vector<MenuBarMode> seen;
  const auto token = s->menuBarMode.subscribe([&](const MenuBarMode& m) { seen.push_back(m); });
  s->menuBarMode.set(MenuBarMode::text);
  s->menuBarMode.unsubscribe(token);
  s->menuBarMode.set(MenuBarMode::icon);
  EXPECT_THAT(seen, ElementsAre(MenuBarMode::text));
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

TEST_F(SettingsManagerTest, GrantedPermissionKeepsAlertsOnAndOffAsksNothing) {
  auto s = make();
  s->alertsEnabled.set(true);
  EXPECT_TRUE(s->alertsEnabled());
  EXPECT_EQ(store.getBool("alertsEnabled"), true);
  s->alertsEnabled.set(false);
  EXPECT_EQ(store.getBool("alertsEnabled"), false);
  EXPECT_EQ(permission.requests, 1);
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

TEST_F(SettingsManagerTest, FailedRegistrationSnapsTheToggleBackToTheSystemState) {
  items.registerError = "The operation couldn't be completed.";
  auto s = make();
  std::vector<bool> seen;
  (void)s->launchAtLogin.subscribe([&](const bool& v) { seen.push_back(v); });
  s->launchAtLogin.set(true);
  EXPECT_FALSE(s->launchAtLogin());
  EXPECT_EQ(items.registerCalls, 1);
  EXPECT_THAT(seen, ElementsAre(true, false));
}

TEST_F(SettingsManagerTest, RegistrationAwaitingApprovalAlsoSnapsBack) {
  items.statusAfterRegister = LoginItemService::kRequiresApproval;
  auto s = make();
  s->launchAtLogin.set(true);
  EXPECT_FALSE(s->launchAtLogin());
  EXPECT_EQ(items.registerCalls, 1);
  EXPECT_EQ(items.unregisterCalls, 0);  // the snap-back does not call the service
}

TEST_F(SettingsManagerTest, SuccessfulChangesStay) {
  auto s = make();
  s->launchAtLogin.set(true);
  EXPECT_TRUE(s->launchAtLogin());
  EXPECT_EQ(items.current, LoginItemService::kEnabled);
  s->launchAtLogin.set(false);
  EXPECT_FALSE(s->launchAtLogin());
  EXPECT_EQ(items.current, LoginItemService::kNotRegistered);
}

TEST_F(SettingsManagerTest, RefreshPublishesAChangeMadeOutsideWithoutCallingTheService) {
  auto s = make();
  int notifications = 0;
  (void)s->launchAtLogin.subscribe([&](const bool&) { ++notifications; });
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
