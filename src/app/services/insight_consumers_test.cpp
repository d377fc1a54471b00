// The monitor on virtual time feeding the real history store, insight engine and alert manager
// through InsightConsumers: the closed-panel questions decide what a tick reads.
#include "app/services/insight_consumers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/defaults_store.h"
#include "base/virtual_time.h"
#include "insights/alert_manager.h"
#include "insights/insight_engine.h"
#include "insights/testing/fake_notification_center.h"
#include "sampling/history_store.h"
#include "sampling/monitor.h"
#include "sampling/testing/fake_readers.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"
#include "settings/testing/fakes.h"

namespace quillmark {
namespace {

class InsightConsumersTest : public ::testing::Test {
 protected:
  InsightConsumersTest() {
    counters.memory = MemorySample{1000, 300, 100, 50, 200, 350};  // 45 % used
    processes.table = {{10, "launchd", 1'000'000'000, 4096}, {42, "Safari", 2'000'000'000, 8192}};
    monitor = Monitor::create({loop, queue, clock, counters, processes, heavy, consumers});
    consumers.connect({history, insights, alerts, settings});
  }
  ~InsightConsumersTest() override { monitor->stop(); }

  void tick() {
    loop.advance(2.0);
    queue.runAll();
    loop.runUntilIdle();
  }

  VirtualClock clock;
  VirtualMainLoop loop{clock};
  ManualSerialQueue queue;
  testing::FakeSystemCounters counters;
  testing::FakeProcessReader processes;
  testing::FakeHeavyReaders heavy;
  testing::RecordingConsumers others;
  InsightConsumers consumers{others};

  MemoryDefaultsStore store;
  testing::FakePermission permission;
  testing::FakeLoginItems items;
  LaunchAtLogin loginItem{items};
  SettingsManager settings{store, [](double) {}, permission, loginItem};
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  HistoryStore history{clock};
  InsightEngine insights{{clock, l10n, [] { return PressureLevel::normal; }, {}, 1}};
  testing::FakeNotificationCenter center;
  AlertManager alerts{{center, settings, l10n, [this] {
                         return AlertManager::Context{monitor->latestProcesses(), monitor->latestThermal()};
                       }}};
  std::shared_ptr<Monitor> monitor;
};

TEST_F(InsightConsumersTest, ClosedPanelReadsTemperatureAndProcessesOnlyWhenAServiceWantsThem) {
  monitor->start(2.0);
  queue.runAll();
  loop.runUntilIdle();
  EXPECT_EQ(processes.scans, 1);  // the insight engine has never ingested
  EXPECT_EQ(heavy.thermalReads, 1);
  for (int i = 0; i < 14; ++i) tick();
  EXPECT_EQ(processes.scans, 1);
  EXPECT_EQ(heavy.thermalReads, 1);
  tick();  // 30 s: a history point with its temperature, and the next ingest
  EXPECT_EQ(processes.scans, 2);
  EXPECT_EQ(heavy.thermalReads, 2);
  EXPECT_EQ(history.cpu().size(), 2u);
  EXPECT_EQ(history.temp().size(), 2u);
  EXPECT_EQ(history.temp().back().value, 50.0);
  EXPECT_EQ(std::count(others.calls.begin(), others.calls.end(), "pins"), 2) << "the other hooks go on";

  // Alerts on: the temperature is read every tick, and the tick that may alert scans processes
  // first, so the notification names the largest process of that moment.
  settings.memAlarmThreshold.set(40);
  settings.alertsEnabled.set(true);
  tick();
  tick();
  EXPECT_EQ(processes.scans, 2);
  EXPECT_EQ(heavy.thermalReads, 4);
  processes.table[0].mem = 1'000'000;
  tick();
  EXPECT_EQ(processes.scans, 3);
  ASSERT_EQ(center.delivered.size(), 1u);
  EXPECT_THAT(center.delivered[0].body, ::testing::EndsWith("\nlaunchd holds the most memory: 976.6 KB."));
}

}  // namespace
}  // namespace quillmark
