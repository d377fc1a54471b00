#include "menubar/menu_bar_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/file_util.h"
#include "base/paths.h"
#include "sampling/testing/monitor_rig.h"
#include "settings/testing/fakes.h"

namespace quillmark {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const ScreenRect kMainScreen{0, 0, 1440, 900};

// A status item whose button sits in a 30-point window at the given right edge.
class FakeStatusItem final : public StatusItemHost {
 public:
  bool hasButton() const override { return button; }
  bool isVisible() const override { return true; }
  void setClickHandler(std::function<void(StatusClick)> handler) override { click = std::move(handler); }
  void setToolTip(const std::string& text) override { toolTip = text; }
  void showIconOnly() override {
    iconOnly = true;
    currentTitle.clear();
  }
  void showIconWithText() override { iconOnly = false; }
  std::string title() const override { return currentTitle; }
  void setTitle(const std::string& title) override { currentTitle = title; }
  std::optional<ScreenRect> buttonBounds() const override { return ScreenRect{0, 0, 30, 24}; }
  std::optional<ScreenRect> windowFrame() const override { return window; }
  void setWindowFrame(const ScreenRect& frame) override { window = frame; }
  std::optional<ScreenRect> mainScreenFrame() const override { return kMainScreen; }
  AnchorGeometry anchor() const override { return {window, kMainScreen}; }
  void popUpMenu(const std::vector<MenuEntry>& entries,
                 std::function<void(MenuAction, const MenuValue&)> onChoose) override {
    menu = entries;
    choose = std::move(onChoose);
  }

  bool button = true;
  bool iconOnly = false;
  std::string currentTitle;
  std::string toolTip;
  std::optional<ScreenRect> window = ScreenRect{1200, 876, 30, 24};
  std::function<void(StatusClick)> click;
  std::optional<std::vector<MenuEntry>> menu;
  std::function<void(MenuAction, const MenuValue&)> choose;
};

class NullPanelHost final : public PanelWindowHost {
 public:
  void build() override { visible = true; }
  bool isVisible() const override { return visible; }
  void moveTo(ScreenPoint) override {}
  void makeKeyAndOrderFront() override {}
  void destroy() override { visible = false; }
  bool visible = false;
};

class TipHost final : public FirstRunTipHost {
 public:
  bool build() override { return buildable; }
  void show(ScreenPoint at) override { origin = at; }
  void dismiss() override { ++dismissals; }
  bool buildable = true;
  std::optional<ScreenPoint> origin;
  int dismissals = 0;
};

class MenuBarControllerTest : public ::testing::Test, protected testing::MonitorRig {
 protected:
  MenuBarControllerTest() {
    monitor->cpu.set(CPUSample{12.4, {}});
    monitor->memory.set(MemorySample{1000, 500, 100, 30, 0, 0});
    monitor->network.set(NetSample{14'200, 2'345'678});
  }

  MenuBarController& started() {
    controller.setup();
    return controller;
  }
  static std::string log() { return readWholeFile(logFilePath()).value_or(""); }

  MemoryDefaultsStore store;
  testing::FakePermission permission;
  testing::FakeLoginItems items;
  LaunchAtLogin loginItem{items};
  SettingsManager settings{store, [](double) {}, permission, loginItem};
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  SkinManager skins{store};
  PanelAnchor anchor;
  PanelFlipState flip{clock};
  NullPanelHost panelHost;
  PanelWindowController panel{
      {panelHost, clock, anchor, flip, [this](bool p) { monitor->setPublishingPaused(p); }}};
  TipHost tipHost;
  FirstRunTipWindow tip{tipHost, loop, settings, anchor};
  FakeStatusItem item;
  int pressureStarts = 0;
  std::function<void()> openPanelFromAlert;
  int terminations = 0;
  MenuBarController controller{
      {item, loop, settings, l10n, skins, *monitor, panel, flip, tip, [this] { ++pressureStarts; },
       [this](std::function<void()> opener) { openPanelFromAlert = std::move(opener); },
       [this] { ++terminations; }}};
};

TEST_F(MenuBarControllerTest, SetupStartsEverythingAndOffersTheTipOnceAfterASecondAndAFifth) {
  settings.menuBarMode.set(MenuBarMode::text);
  started();
  EXPECT_TRUE(monitor->isRunning());
  EXPECT_DOUBLE_EQ(monitor->refreshInterval(), 2.0);
  EXPECT_EQ(item.currentTitle, "CPU 12% MEM 63%");
  EXPECT_THAT(item.toolTip, HasSubstr("right-click"));
  EXPECT_EQ(pressureStarts, 1);
  ASSERT_TRUE(openPanelFromAlert);
  openPanelFromAlert();
  EXPECT_TRUE(panel.isShown());
  panel.close();

  // A card that cannot be built is not shown, and the first run is not spent on it.
  TipHost brokenHost;
  brokenHost.buildable = false;
  FirstRunTipWindow broken{brokenHost, loop, settings, anchor};
  broken.showIfNeeded(item.anchor());
  EXPECT_FALSE(brokenHost.origin.has_value());
  EXPECT_TRUE(settings.isFirstRun());

  loop.advance(1.19);
  EXPECT_FALSE(tip.isShown());
  loop.advance(0.02);
  ASSERT_TRUE(tip.isShown());
  EXPECT_FALSE(settings.isFirstRun());  // written before the card appeared
  EXPECT_DOUBLE_EQ(tipHost.origin->y, 876 - 158);
  EXPECT_DOUBLE_EQ(anchor.arrowX(), 1215 - tipHost.origin->x);
  // Both cards share the anchor: opening the panel while the card is up moves the arrow to the panel's.
  item.click(StatusClick::left);
  EXPECT_DOUBLE_EQ(anchor.arrowX(), 200);  // the card's was 140
  panel.close();
  // Dismissed by its button; the timed dismissal later does nothing more.
  tip.dismiss();
  loop.advance(10);
  EXPECT_EQ(tipHost.dismissals, 1);
  EXPECT_THAT(log(), HasSubstr("First launch: showing guidance tip"));

  // A second launch, even one after quitting while the card was up, never shows it.
  TipHost secondHost;
  FirstRunTipWindow second{secondHost, loop, settings, anchor};
  second.showIfNeeded(item.anchor());
  EXPECT_FALSE(secondHost.origin.has_value());
}

TEST_F(MenuBarControllerTest, TextFollowsTicksAndSettingsAtOnceButIconModeLeavesTheTitleAlone) {
  settings.menuBarMode.set(MenuBarMode::text);
  started();
  settings.showNetSpeed.set(true);
  EXPECT_EQ(item.currentTitle, "CPU 12% MEM 63%  \u219314K \u21912.3M");
  monitor->cpu.set(CPUSample{40.0, {}});
  monitor->onTick();
  EXPECT_THAT(item.currentTitle, HasSubstr("CPU 40%"));

  settings.menuBarMode.set(MenuBarMode::icon);
  EXPECT_TRUE(item.iconOnly);
  controller.updateStatusText();
  EXPECT_EQ(item.currentTitle, "");
  l10n.language.set(AppLanguage::de);
  EXPECT_EQ(item.currentTitle, "");
  EXPECT_THAT(item.toolTip, Not(HasSubstr("right-click")));
}

TEST_F(MenuBarControllerTest, RightClickShowsOnlyTheMenuAndLeftClickOnlyThePanel) {
  started();
  item.click(StatusClick::right);
  EXPECT_TRUE(item.menu.has_value());
  EXPECT_FALSE(panel.isShown());
  item.menu.reset();
  item.click(StatusClick::left);
  EXPECT_TRUE(panel.isShown());
  EXPECT_FALSE(monitor->publishingPaused());
  EXPECT_FALSE(item.menu.has_value());
  clock.advance(1);
  item.click(StatusClick::none);  // no current event counts as a left click
  EXPECT_FALSE(panel.isShown());
}

TEST_F(MenuBarControllerTest, MenuMarksTheCurrentChoicesAndActionsIgnoreWrongValues) {
  started();
  settings.refreshInterval.set(3.0);
  skins.skin.set(PanelSkin::vitals);
  item.click(StatusClick::right);
  const std::vector<MenuEntry>& menu = *item.menu;
  ASSERT_EQ(menu.size(), 10u);
  EXPECT_FALSE(menu[0].enabled);
  EXPECT_TRUE(menu[1].separator && menu[5].separator && menu[7].separator);
  EXPECT_TRUE(menu[2].submenu[0].checked);  // icon, the default
  EXPECT_FALSE(menu[2].submenu[1].checked);
  EXPECT_FALSE(menu[3].checked);            // network rates off
  EXPECT_TRUE(menu[4].submenu[1].checked);  // vitals
  for (const MenuEntry& interval : menu[6].submenu) EXPECT_FALSE(interval.checked);
  EXPECT_EQ(menu[8].keyEquivalent, ",");
  EXPECT_EQ(menu[9].keyEquivalent, "q");

  item.choose(MenuAction::setInterval, std::string("5"));
  item.choose(MenuAction::setMenuBarStyle, 1.0);
  item.choose(MenuAction::setMenuBarStyle, std::string("banner"));
  item.choose(MenuAction::setSkin, std::string("paper"));
  EXPECT_DOUBLE_EQ(settings.refreshInterval(), 3.0);
  EXPECT_EQ(settings.menuBarMode(), MenuBarMode::icon);
  EXPECT_EQ(skins.skin(), PanelSkin::vitals);

  item.choose(menu[6].submenu[2].action, menu[6].submenu[2].value);
  item.choose(menu[2].submenu[1].action, menu[2].submenu[1].value);
  item.choose(menu[4].submenu[0].action, menu[4].submenu[0].value);
  item.choose(menu[3].action, menu[3].value);
  EXPECT_DOUBLE_EQ(settings.refreshInterval(), 5.0);
  EXPECT_EQ(settings.menuBarMode(), MenuBarMode::text);
  EXPECT_EQ(store.getString("panelSkin"), "glass");
  EXPECT_THAT(item.currentTitle, HasSubstr("\u2193"));
  EXPECT_THAT(log(), HasSubstr("Panel skin changed: glass"));

  item.choose(menu[8].action, menu[8].value);
  EXPECT_TRUE(panel.isShown());
  EXPECT_TRUE(flip.flipped());
  item.choose(menu[9].action, menu[9].value);
  EXPECT_EQ(terminations, 1);
}

TEST_F(MenuBarControllerTest, NudgePullsAFarLeftItemBackEveryEightSeconds) {
  item.window = ScreenRect{1440 - 700 - 30, 876, 30, 24};
  started();
  loop.advance(2.0);
  EXPECT_DOUBLE_EQ(item.window->maxX(), 1440 - 668);
  EXPECT_THAT(log(), HasSubstr("nudge: (710.0, 876.0, 30.0, 24.0) -> (742.0, 876.0, 30.0, 24.0)"));
  EXPECT_THAT(
      log(),
      HasSubstr("Status item window frame=(710.0, 876.0, 30.0, 24.0) screenWidth=1440.0 isVisible=true"));

  item.window = ScreenRect{1440 - 600 - 30, 876, 30, 24};
  loop.advance(8.0);
  EXPECT_DOUBLE_EQ(item.window->maxX(), 1440 - 600);  // closer to the edge than the limit: left alone
  item.window = ScreenRect{100, 876, 30, 24};
  loop.advance(8.0);
  EXPECT_DOUBLE_EQ(item.window->maxX(), 1440 - 668);
  EXPECT_EQ(loop.activeTimers(), 2u);  // the monitor's and the nudge's; a second start replaces it
  controller.startNudge();
  EXPECT_EQ(loop.activeTimers(), 2u);
}

TEST_F(MenuBarControllerTest, WithoutAButtonSetupStillStartsSamplingAndLogsWhy) {
  item.button = false;
  started();
  loop.advance(2.5);
  EXPECT_TRUE(monitor->isRunning());
  EXPECT_EQ(item.currentTitle, "");
  EXPECT_THAT(log(), HasSubstr("\u26a0 Status item button is nil"));
}

}  // namespace
}  // namespace quillmark
