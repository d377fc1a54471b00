#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "base/main_loop.h"
#include "menubar/first_run_tip_window.h"
#include "menubar/menu_model.h"
#include "menubar/panel_flip_state.h"
#include "menubar/panel_window_controller.h"
#include "menubar/skin_manager.h"
#include "menubar/status_item_host.h"
#include "sampling/monitor.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"

namespace quillmark {

// The program's presence in the menu bar: the status item with its icon or live usage text, the
// panel on a left click, a menu built afresh on a right click, and a timer that pulls the item
// back into view when the menu bar has pushed it too far left. setup() also starts sampling, the
// pressure monitor and the alerts, and offers the first-run tip. Every closure it hands out holds
// it weakly. Main thread only.
class MenuBarController {
 public:
  static constexpr double kNudgePeriodSeconds = 8.0;
  static constexpr double kFirstNudgeSeconds = 2.0;
  static constexpr double kPositionLogSeconds = 2.0;
  static constexpr double kTipDelaySeconds = 1.2;
  // An item whose window ends further than this from the main screen's right edge is moved back.
  static constexpr double kNudgeDistance = 668;

  struct Environment {
    StatusItemHost& statusItem;
    MainLoop& loop;
    SettingsManager& settings;
    L10n& l10n;
    SkinManager& skins;
    Monitor& monitor;
    PanelWindowController& panel;
    PanelFlipState& flip;
    FirstRunTipWindow& tip;
    // The services that are started with the status item; absent ones are skipped.
    std::function<void()> startPressureMonitor;
    // Activates the alert manager and gives it the way to open the panel from a notification.
    std::function<void(std::function<void()> openPanel)> activateAlerts;
    std::function<void()> terminate;
  };

  explicit MenuBarController(Environment environment);
  ~MenuBarController();
  MenuBarController(const MenuBarController&) = delete;
  MenuBarController& operator=(const MenuBarController&) = delete;

  void setup();
  void applyMenuBarStyle();
  void updateStatusText();
  void statusItemClicked(StatusClick click);
  [[nodiscard]] std::vector<MenuEntry> buildMenu() const;
  // The menu's actions; a value of the wrong type or an unknown raw value does nothing.
  void perform(MenuAction action, const MenuValue& value);

  void startNudge();
  void nudgeStatusItem();
  void logStatusItemPosition();

  // The window frame that brings an item back to kNudgeDistance from the screen's right edge, or
  // nothing when it is already there or further right.
  [[nodiscard]] static std::optional<ScreenRect> nudgedFrame(const ScreenRect& window,
                                                             const ScreenRect& screen);

 private:
  // Runs f on this controller if it still exists when the closure is called.
  template <class F>
  [[nodiscard]] MainLoop::Task weakly(F f) const {
    return [weak = std::weak_ptr<MenuBarController*>(lifetime_), f] {
      if (auto self = weak.lock()) f(**self);
    };
  }

  Environment env_;
  MainLoop::TimerId nudgeTimer_ = 0;
  Setting<MenuBarMode>::Token modeToken_ = 0;
  Setting<bool>::Token netSpeedToken_ = 0;
  Setting<AppLanguage>::Token languageToken_ = 0;
  std::shared_ptr<MenuBarController*> lifetime_ = std::make_shared<MenuBarController*>(this);
};

}  // namespace quillmark
