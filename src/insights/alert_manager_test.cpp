#include "insights/alert_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/defaults_store.h"
#include "insights/testing/fake_notification_center.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"
#include "settings/testing/fakes.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Metric = AlertManager::Metric;

using FakeCenter = testing::FakeNotificationCenter;

class AlertManagerTest : public ::testing::Test {
 protected:
  AlertManagerTest() {
    alerts.activate();
    settings.alertsEnabled.set(true);
  }
  std::vector<std::string> ids() const {
    std::vector<std::string> out;
    for (const auto& n : center.delivered) out.push_back(n.identifier);
    return out;
  }

  MemoryDefaultsStore store;
  testing::FakeLoginItems items;
  LaunchAtLogin loginItem{items};
  FakeCenter center;
  AlertManager::Context context;
  SettingsManager settings{store, [](double) {}, NotificationPermissionSlot::shared(), loginItem};
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  AlertManager alerts{{center, settings, l10n, [this] { return context; }}};
};

TEST_F(AlertManagerTest, ThreeSamplesAtOrAboveAlertOncePerExcursion) {
  // 85 % threshold: two high, one low, two high sends nothing.
  for (double cpu : {90.0, 90.0, 84.9, 90.0, 90.0}) alerts.evaluate(cpu, 10, std::nullopt);
  EXPECT_THAT(center.delivered, IsEmpty());
  EXPECT_TRUE(alerts.wantsProcessScan()) << "the next sample may alert: scan so the alert names a process";
  alerts.evaluate(85.0, 10, std::nullopt);  // at exactly the threshold counts
  EXPECT_THAT(ids(), ElementsAre("alert.cpu"));
  EXPECT_FALSE(alerts.wantsProcessScan());
  alerts.evaluate(99, 10, std::nullopt);
  alerts.evaluate(99, 10, std::nullopt);
  EXPECT_EQ(center.delivered.size(), 1u);
  alerts.evaluate(10, 10, std::nullopt);
  EXPECT_EQ(alerts.state(Metric::cpu), AlertManager::State{});
  for (int i = 0; i < 3; ++i) alerts.evaluate(95, 10, std::nullopt);
  EXPECT_THAT(ids(), ElementsAre("alert.cpu", "alert.cpu"));
}

TEST_F(AlertManagerTest, MetricsCountIndependentlyAndMissingTemperatureLeavesItsCount) {
  alerts.evaluate(10, 95, 90.0);
  alerts.evaluate(10, 95, std::nullopt);
  alerts.evaluate(90, 95, 90.0);
  EXPECT_EQ(alerts.state(Metric::temperature).overCount, 2);
  EXPECT_THAT(ids(), ElementsAre("alert.memory"));
  alerts.evaluate(90, 95, 91.0);
  alerts.evaluate(90, 10, 80.0);
  EXPECT_THAT(ids(), ElementsAre("alert.memory", "alert.temperature", "alert.cpu"));

  // Off: nothing is sent and the counts stand still.
  settings.alertsEnabled.set(false);
  const auto before = alerts.state(Metric::memory);
  for (int i = 0; i < 5; ++i) alerts.evaluate(99, 99, 99.0);
  EXPECT_EQ(alerts.state(Metric::memory), before);
  EXPECT_EQ(center.delivered.size(), 3u);
  EXPECT_FALSE(alerts.wantsProcessScan());
}

TEST_F(AlertManagerTest, TextsNameTheCauseInTheUsersUnit) {
  context.processes = {{10, "idle", 0.5, 9'000'000'000}, {11, "compiler", 187.9, 500'000'000}};
  context.thermal.cpuC = 88.4;
  context.thermal.gpuC = 91.6;
  settings.tempUnit.set(TempUnit::fahrenheit);
  for (int i = 0; i < 3; ++i) alerts.evaluate(97.9, 96.2, 88.4);
  ASSERT_EQ(center.delivered.size(), 3u);
  EXPECT_EQ(center.delivered[0].title, "High CPU Load");
  EXPECT_EQ(
      center.delivered[0].body,
      "CPU load has stayed at 97%, at or above your 85% threshold.\ncompiler is using the most CPU: 187%.");
  EXPECT_EQ(
      center.delivered[1].body,
      "Memory use has stayed at 96%, at or above your 90% threshold.\nidle holds the most memory: 8.4 GB.");
  EXPECT_EQ(
      center.delivered[2].body,
      "The temperature has stayed at 191°, at or above your 185° threshold.\nHottest sensor: GPU at 197°.");

  // Without a process list or sensors there is no cause line.
  context = {};
  settings.alertsEnabled.set(false);
  settings.alertsEnabled.set(true);
  for (int i = 0; i < 2; ++i) alerts.evaluate(10, 10, 10.0);
  for (int i = 0; i < 3; ++i) alerts.evaluate(97.9, 10, 10.0);
  EXPECT_EQ(center.delivered.back().body, "CPU load has stayed at 97%, at or above your 85% threshold.");
}

TEST_F(AlertManagerTest, ClickOpensThePanelAndRefusalRevertsTheToggle) {
  int opened = 0;
  center.click();  // no opener yet: nothing happens
  alerts.panelOpener = [&] { ++opened; };
  center.click();
  EXPECT_EQ(opened, 1);

  NotificationPermissionSlot::shared().setTarget(&alerts);
  settings.alertsEnabled.set(false);
  center.grant = false;
  settings.alertsEnabled.set(true);
  EXPECT_EQ(center.requests, 1);
  EXPECT_FALSE(settings.alertsEnabled());
  EXPECT_EQ(store.getBool("alertsEnabled"), false);
  NotificationPermissionSlot::shared().setTarget(nullptr);
}

}  // namespace
}  // namespace quillmark
