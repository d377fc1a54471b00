#include "app/desktop/desktop_status_item.h"

#include <gtest/gtest.h>

#include "base/virtual_time.h"
#include "menubar/menu_bar_controller.h"
#include "sampling/testing/fake_readers.h"
#include "settings/testing/fakes.h"

namespace quillmark {
namespace {

class FakeTray final : public TrayItem {
 public:
  void setTitle(const std::string& text) override { title = text; }
  void setToolTip(const std::string& text) override { toolTip = text; }
  std::string title = "unset";
  std::string toolTip;
};

class RecordingPanelHost final : public PanelWindowHost {
 public:
  void build() override { visible = true; }
  bool isVisible() const override { return visible; }
  void moveTo(ScreenPoint point) override { origin = point; }
  void makeKeyAndOrderFront() override {}
  void destroy() override { visible = false; }
  bool visible = false;
  std::optional<ScreenPoint> origin;
};

class NullTipHost final : public FirstRunTipHost {
 public:
  void show(ScreenPoint) override {}
  void dismiss() override {}
};

// The desktop program's status item under the real menu-bar controller, with a fake tray and an
// anchor lookup that records what it was asked.
class DesktopStatusItemTest : public ::testing::Test {
 protected:
  DesktopStatusItemTest() {
    monitor->cpu.set(CPUSample{12.4, {}});
    monitor->memory.set(MemorySample{1000, 500, 100, 30, 0, 0});
    item.buildMenu = [this] { return controller.buildMenu(); };
    item.perform = [this](MenuAction action, const MenuValue& value) { controller.perform(action, value); };
    item.attach(&tray);
    controller.setup();
  }

  VirtualClock clock;
  VirtualMainLoop loop{clock};
  ManualSerialQueue queue;
  testing::FakeSystemCounters counters;
  testing::FakeProcessReader processes;
  testing::FakeHeavyReaders heavy;
  testing::RecordingConsumers consumers;
  std::shared_ptr<Monitor> monitor =
      Monitor::create({loop, queue, clock, counters, processes, heavy, consumers});
  MemoryDefaultsStore store;
  testing::FakePermission permission;
  testing::FakeLoginItems items;
  LaunchAtLogin loginItem{items};
  SettingsManager settings{store, [](double) {}, permission, loginItem};
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  SkinManager skins{store};
  PanelAnchor anchor;
  PanelFlipState flip{clock};
  RecordingPanelHost panelHost;
  PanelWindowController panel{{panelHost, clock, anchor, flip, nullptr}};
  NullTipHost tipHost;
  FirstRunTipWindow tip{tipHost, loop, settings, anchor};
  std::vector<std::optional<TrayClick>> lookups;
  DesktopStatusItem item{[this](const std::optional<TrayClick>& click) {
    lookups.push_back(click);
    // A 24-point item whose bottom is 1000 points up, on a screen 1920 wide.
    const double x = click ? click->x : 1900;
    return AnchorGeometry{ScreenRect{x - 12, 1000, 24, 24}, ScreenRect{0, 0, 1920, 1000}};
  }};
  FakeTray tray;
  MenuBarController controller{
      {item, loop, settings, l10n, skins, *monitor, panel, flip, tip, nullptr, nullptr, nullptr}};
};

TEST_F(DesktopStatusItemTest, ATrayClickTogglesThePanelUnderItsPointAndZeroZeroMeansNoPoint) {
  item.activate(300, 20);
  ASSERT_TRUE(panel.isShown());
  ASSERT_TRUE(lookups.back());
  EXPECT_EQ(lookups.back()->x, 300);
  EXPECT_DOUBLE_EQ(panelHost.origin->x, 100);  // centred under x 300
  EXPECT_DOUBLE_EQ(anchor.arrowX(), 200);

  item.activate(300, 20);  // the second click closes it, and the debounce holds a third
  EXPECT_FALSE(panel.isShown());
  item.activate(300, 20);
  EXPECT_FALSE(panel.isShown());

  clock.advance(1);
  item.activate(0, 0);
  EXPECT_TRUE(panel.isShown());
  EXPECT_FALSE(lookups.back());  // the tray's likely place, not a point at the screen's corner
}

TEST_F(DesktopStatusItemTest, TheTrayShowsTheTextOnlyInTextModeAndTheToolTipAlways) {
  EXPECT_EQ(tray.toolTip, L(l10n, "menu.tooltip"));
  settings.menuBarMode.set(MenuBarMode::text);
  loop.runUntilIdle();
  EXPECT_EQ(tray.title, item.title());
  EXPECT_NE(tray.title.find("12"), std::string::npos) << tray.title;
  settings.menuBarMode.set(MenuBarMode::icon);
  loop.runUntilIdle();
  EXPECT_EQ(tray.title, "");
  // A tray attached later gets the current state at once.
  FakeTray late;
  item.attach(&late);
  EXPECT_EQ(late.title, "");
  EXPECT_EQ(late.toolTip, tray.toolTip);
}

TEST_F(DesktopStatusItemTest, TheMenuIsTheControllersAndItsActionsReachTheSettings) {
  const auto menu = item.menu();
  ASSERT_FALSE(menu.empty());
  EXPECT_EQ(menu.front().title, L(l10n, "menu.title"));
  item.menuAction(MenuAction::setInterval, MenuValue{5.0});
  EXPECT_DOUBLE_EQ(settings.refreshInterval(), 5.0);
  item.menuAction(MenuAction::openSettings, {});
  EXPECT_TRUE(panel.isShown());
  EXPECT_TRUE(flip.flipped());

  std::vector<bool> reports;
  item.onTrayHostChanged = [&reports](bool present) { reports.push_back(present); };
  item.trayHostChanged(true);
  EXPECT_TRUE(item.isVisible());
  item.trayHostChanged(false);
  EXPECT_FALSE(item.isVisible());
  EXPECT_EQ(reports, (std::vector<bool>{true, false}));
}

}  // namespace
}  // namespace quillmark
