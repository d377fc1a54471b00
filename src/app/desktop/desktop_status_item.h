#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/desktop/tray_delegate.h"
#include "menubar/status_item_host.h"

namespace quillmark {

// Where the tray reported a click, in its screen pixels.
struct TrayClick {
  int x = 0;
  int y = 0;
};

// The status item of the Linux desktop program: the menu-bar controller's StatusItemHost on top
// of a tray item, and the delegate the tray item calls. A tray click becomes the controller's left
// click, with the anchor taken from the click's point; the menu is the controller's, shown by the
// tray host through dbusmenu rather than popped up here; the text goes to the tray as its label,
// and only in text mode. The tray's own window is not ours, so there is nothing to nudge. Without
// a tray item (none could be made) the item still anchors the panel for `quillmark ctl open-panel`.
// Main thread only.
class DesktopStatusItem final : public StatusItemHost, public TrayDelegate {
 public:
  // The anchor for a click, or for the tray's likely place when there was none yet.
  using AnchorLookup = std::function<AnchorGeometry(const std::optional<TrayClick>&)>;

  explicit DesktopStatusItem(AnchorLookup anchorAt) : anchorAt_(std::move(anchorAt)) {}

  // The tray item to drive, or null; it must outlive this object or be detached first.
  void attach(TrayItem* tray);

  // Set by the program: the controller's menu and its actions, and the tray host's presence.
  std::function<std::vector<MenuEntry>()> buildMenu;
  std::function<void(MenuAction, const MenuValue&)> perform;
  std::function<void(bool present)> onTrayHostChanged;

  // StatusItemHost.
  [[nodiscard]] bool hasButton() const override { return true; }
  [[nodiscard]] bool isVisible() const override { return trayHostPresent_; }
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
  [[nodiscard]] AnchorGeometry anchor() const override { return anchorAt_(lastClick_); }
  // The tray host shows the menu itself (dbusmenu); nothing pops up from here.
  void popUpMenu(const std::vector<MenuEntry>&, std::function<void(MenuAction, const MenuValue&)>) override {}

  // TrayDelegate.
  void activate(int x, int y) override;
  [[nodiscard]] std::vector<MenuEntry> menu() const override;
  void menuAction(MenuAction action, const MenuValue& value) override;
  void trayHostChanged(bool present) override;

 private:
  void pushTitle();

  AnchorLookup anchorAt_;
  TrayItem* tray_ = nullptr;
  std::function<void(StatusClick)> onClick_;
  std::optional<TrayClick> lastClick_;
  std::string title_;
  std::string toolTip_;
  bool textMode_ = false;
  bool trayHostPresent_ = false;
};

}  // namespace quillmark
