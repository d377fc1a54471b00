#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/linux_main_loop.h"
#include "menubar/menu_model.h"

namespace quillmark {

// The desktop program's side of the tray item, called by the item (StatusNotifierItem and its
// com.canonical.dbusmenu menu) on the main thread as the tray host's calls arrive.
class TrayDelegate {
 public:
  virtual ~TrayDelegate() = default;

  // A primary click (Activate): opens the panel under (x, y), or closes it when open. x, y are
  // the host's screen coordinates in X pixels; 0, 0 when the host does not say (then the panel
  // hangs under the tray's likely place).
  virtual void activate(int x, int y) = 0;
  // The menu as it should look now, built afresh for each request (titles in the current
  // language, the current choices checked).
  [[nodiscard]] virtual std::vector<MenuEntry> menu() const = 0;
  // An entry of menu() was chosen: its action with its value.
  virtual void menuAction(MenuAction action, const MenuValue& value) = 0;
  // Whether a StatusNotifierWatcher with a registered host is there: reported once soon after the
  // item is made, then on every change. Without one the item is shown nowhere.
  virtual void trayHostChanged(bool present) = 0;
};

// The tray item itself, made by makeTrayItem and driven by the program. Main thread only.
class TrayItem {
 public:
  virtual ~TrayItem() = default;
  // The live text beside the icon (XAyatanaLabel); empty in icon-only mode.
  virtual void setTitle(const std::string& title) = 0;
  virtual void setToolTip(const std::string& text) = 0;
};

// Registers the item on the session bus, served from loop; null with a sentence in error when it
// cannot be made at all (no session bus). delegate must outlive the item.
[[nodiscard]] std::unique_ptr<TrayItem> makeTrayItem(LinuxMainLoop& loop, TrayDelegate& delegate,
                                                     std::string& error);

}  // namespace quillmark
