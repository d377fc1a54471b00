// The adapter hands the panel one model per burst of published values, with unread values absent,
// and its settings operations reach the settings and the language.
#include "views/panel_services.h"

#include <gtest/gtest.h>

#include <csignal>

#include "views/canvas_cairo.h"
#include "views/controls.h"
#include "views/panel_root.h"
#include "views/testing/panel_fixture.h"
#include "views/testing/services_rig.h"

namespace quillmark {
namespace {

struct Services : testing::ServicesRig {
  PanelServices panel{services()};
};

TEST(PanelServicesTest, OneModelPerBurstWithAbsentValuesKeptAbsent) {
  Services s;
  std::vector<PanelModel> models;
  s.panel.onModel([&](const PanelModel& m) { models.push_back(m); });
  ASSERT_EQ(models.size(), 1u);
  EXPECT_FALSE(models[0].diskTotal);  // nothing measured yet: no disk, not a disk of 0 bytes
  EXPECT_FALSE(models[0].cpuTotal());

  Monitor::Snapshot snapshot;
  snapshot.cpu = {55, {50, 60}};
  snapshot.diskFree = 10;
  snapshot.diskTotal = 100;
  s.monitor->setPublishingPaused(false);
  s.monitor->apply(snapshot);
  s.settings.tempUnit.set(TempUnit::fahrenheit);
  EXPECT_EQ(models.size(), 1u);  // nothing until the loop turns
  s.loop.runUntilIdle();
  ASSERT_EQ(models.size(), 2u);
  EXPECT_EQ(models[1].cpu.total, 55);
  EXPECT_EQ(models[1].diskTotal, 100u);
  EXPECT_EQ(models[1].tempUnit, TempUnit::fahrenheit);
}

TEST(PanelServicesTest, SettingsOperationsReachTheirSettings) {
  Services s;
  s.panel.setRefreshInterval(5);
  s.panel.setModuleVisible(PanelModule::gpu, false);
  s.panel.addPreauthorized("Safari");
  s.panel.addPreauthorized("Xcode");
  s.panel.removePreauthorized("Safari");
  s.panel.setLanguage(AppLanguage::de);
  EXPECT_EQ(s.settings.refreshInterval(), 5);
  EXPECT_FALSE(s.settings.isVisible(PanelModule::gpu));
  EXPECT_EQ(s.settings.killWhitelist(), std::vector<std::string>{"Xcode"});
  EXPECT_EQ(s.l10n.resolvedCode(), "de");
  EXPECT_EQ(s.store.getStringArray("killWhitelist"), std::vector<std::string>{"Xcode"});  // stored at once
}

TEST(PanelServicesTest, ProcessOperationsReachProcessControlAndComeBackInTheModel) {
  Services s;
  s.signals.groups = {{42, 40}, {40, 40}, {500, 500}};  // 500: this program
  s.signals.names = {{40, "Safari"}};
  s.starts.stamps = {{40, 7}, {42, 8}};
  Monitor::Snapshot snapshot;
  snapshot.processes = {{42, "Safari", 3, 100}, {43, "Mail", 1, 100}};
  snapshot.processesScanned = true;
  s.monitor->setPublishingPaused(false);
  s.monitor->apply(snapshot);

  EXPECT_TRUE(s.panel.canPause(42, "Safari"));
  EXPECT_FALSE(s.panel.isKillable(1, "launchd"));
  s.panel.pause(42, "Safari");
  s.panel.togglePin("Mail");
  PanelModel m = s.panel.currentModel();
  ASSERT_EQ(m.paused.size(), 1u);
  EXPECT_EQ(m.paused[0].pgid, 40);
  EXPECT_EQ(m.pausedGroupOfPid.at(42), 40);  // the row knows which banner entry resumes it
  EXPECT_FALSE(m.pausedGroupOfPid.contains(43));
  EXPECT_EQ(m.pins, std::vector<std::string>{"Mail"});

  s.signals.stopped[40] = true;
  s.panel.resume(40);
  EXPECT_EQ(s.signals.sent.back(), (testing::SentSignal{40, SIGCONT, true}));
  EXPECT_TRUE(s.panel.currentModel().paused.empty());
  s.panel.resume(40);  // gone already: nothing more is sent
  EXPECT_EQ(s.signals.sent.size(), 2u);
}

TEST(PanelServicesTest, SkinAndHistoryWindowGoThroughTheirServicesWhenGiven) {
  Services s;
  SkinManager skins(s.store);
  HistoryStore history(s.clock);
  HistoryWindowState window;
  PanelServices::Services with = s.services();
  with.skins = &skins;
  with.history = &history;
  with.historyWindow = &window;
  PanelServices panel{with};
  panel.setSkin(PanelSkin::vitals);
  panel.setHistoryWindow(PanelModel::HistoryWindow::m30);
  EXPECT_EQ(s.store.getString("panelSkin"), "vitals");  // stored by the skin manager
  const PanelModel m = panel.currentModel();
  EXPECT_EQ(m.skin, PanelSkin::vitals);
  EXPECT_EQ(m.historyWindow, PanelModel::HistoryWindow::m30);
  EXPECT_EQ(m.cpuSlots.size(), 60u);  // the store's slots for 30 minutes, all gaps yet
}

TEST(PanelServicesTest, SkinChosenOnTheSettingsFaceIsStoredAndRedrawsThePanel) {
  Services s;
  SkinManager skins(s.store);
  PanelServices::Services with = s.services();
  with.skins = &skins;
  PanelServices services{with};
  auto canvas = CairoCanvas::offscreen({400, 668}, 1);
  PanelAnchor anchor;
  PanelFlipState flip(s.clock);
  PanelRoot root(services, *canvas, {anchor, flip, s.clock});
  services.onModel([&](const PanelModel& m) { root.setModel(m); });
  root.showSettings(true);
  s.clock.advance(2);
  auto* picker = dynamic_cast<SegmentedPicker*>(root.tree().children()[1]->findById("skin"));
  ASSERT_NE(picker, nullptr);
  testing::PanelFixture::reveal(*picker);
  const Point origin = picker->originIn();
  const Rect vitals = picker->segment(1);
  const Point at{origin.x + vitals.midX(), origin.y + vitals.midY()};
  root.pointer({ViewPointerEvent::Kind::down, at});
  root.pointer({ViewPointerEvent::Kind::up, at});
  EXPECT_EQ(s.store.getString("panelSkin"), "vitals");
  EXPECT_EQ(skins.skin(), PanelSkin::vitals);
  s.loop.runUntilIdle();
  EXPECT_EQ(root.model().skin, PanelSkin::vitals);
}

}  // namespace
}  // namespace quillmark
