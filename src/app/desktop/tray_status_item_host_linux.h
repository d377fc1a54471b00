#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/desktop/tray_delegate.h"
#include "app/desktop/tray_linux.h"
#include "menubar/status_item_host.h"
#include "sampling/monitor.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"

namespace quillmark {

// The tray item as the menu-bar controller's status item, so the desktop program gets the same
// behaviour as the menu bar: MenuBarController decides the mode, the text on every tick, the tool
// tip and what clicks and menu entries do; this host shows it through Tray. A primary click
// (Activate) is a left click, a host's ContextMenu request a right click; the menu that hosts draw
// themselves comes from menu() and its choices go to perform(), both set by the program.
//
// There is no status-item window on Linux, so the nudge and the position log find none and do
// nothing. The tool tip's body carries the live figures in both modes (the monitor's published
// samples are followed for it). Main thread only.
class TrayStatusItemHost final : public StatusItemHost, private TrayDelegate {
 public:
  struct Environment {
    LinuxMainLoop& loop;
    Monitor& monitor;
    SettingsManager& settings;
    L10n& l10n;
    // The menu as it is now, and what a chosen entry does (MenuBarController::buildMenu and
    // perform).
    std::function<std::vector<MenuEntry>()> menu;
    std::function<void(MenuAction, const MenuValue&)> perform;
    // Where the panel should hang for a click (screen pixels, y down), or for the tray's likely
    // place when there was none (the first-run tip, `quillmark ctl open-panel`), as the window side
    // knows the monitors; absent leaves the placement to the panel.
    std::function<AnchorGeometry(const std::optional<TrayClick>&)> anchorAt;
    // Pops a menu up for hosts that ask the item to show it (ContextMenu); absent: not shown.
    std::function<void(const std::vector<MenuEntry>&, std::function<void(MenuAction, const MenuValue&)>)>
        popUpMenu;
    // Whether a tray host shows the item; see TrayDelegate::trayShown.
    std::function<void(bool)> trayShown;
  };

  explicit TrayStatusItemHost(Environment environment);
  ~TrayStatusItemHost() override;
  TrayStatusItemHost(const TrayStatusItemHost&) = delete;
  TrayStatusItemHost& operator=(const TrayStatusItemHost&) = delete;

  // Puts the item on the bus; false with a sentence in error when there is no session bus.
  [[nodiscard]] bool start(std::string& error);
  // Re-reads the menu (after a setting it shows changed elsewhere, or the language).
  void refreshMenu() { tray_.refreshMenu(); }

  // StatusItemHost
  // The item anchors the panel even where no tray shows it (`quillmark ctl open-panel`).
  [[nodiscard]] bool hasButton() const override { return true; }
  [[nodiscard]] bool isVisible() const override { return shown_; }
  void setClickHandler(std::function<void(StatusClick)> onClick) override { onClick_ = std::move(onClick); }
  void setToolTip(const std::string& text) override;
  void showIconOnly() override;
  void showIconWithText() override;
  [[nodiscard]] std::string title() const override { return title_; }
  void setTitle(const std::string& title) override;
  [[nodiscard]] std::optional<ScreenRect> buttonBounds() const override { return anchor().item; }
  [[nodiscard]] std::optional<ScreenRect> windowFrame() const override { return std::nullopt; }
  void setWindowFrame(const ScreenRect&) override {}
  [[nodiscard]] std::optional<ScreenRect> mainScreenFrame() const override { return anchor().visibleFrame; }
  [[nodiscard]] AnchorGeometry anchor() const override;
  void popUpMenu(const std::vector<MenuEntry>& menu,
                 std::function<void(MenuAction, const MenuValue&)> onChoose) override;

 private:
  // TrayDelegate
  void activate(int x, int y) override;
  void contextMenu(int x, int y) override;
  std::vector<MenuEntry> menu() override { return env_.menu ? env_.menu() : std::vector<MenuEntry>{}; }
  void perform(MenuAction action, const MenuValue& value) override;
  void trayShown(bool shown) override;

  void updateToolTip();

  Environment env_;
  Tray tray_;
  bool started_ = false;
  bool shown_ = false;
  bool textMode_ = false;
  std::string title_;
  std::string hint_;
  void remember(int x, int y);

  std::optional<TrayClick> lastClick_;
  std::function<void(StatusClick)> onClick_;
  Published<NetSample>::Token networkToken_ = 0;
};

}  // namespace quillmark
