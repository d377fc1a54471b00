#pragma once

#include <vector>

#include "menubar/menu_model.h"

namespace quillmark {

// Where the tray host reported a click, in its screen pixels.
struct TrayClick {
  int x = 0;
  int y = 0;
};

// What the desktop program does when the user acts on its tray item. Coordinates are the
// pointer's position in screen pixels as the tray host reports it (0, 0 when the host does not
// say; Wayland hosts never do). Called on the main thread, from inside the bus dispatch.
class TrayDelegate {
 public:
  virtual ~TrayDelegate() = default;

  // Primary click: open the panel there, or close it when it is open.
  virtual void activate(int x, int y) = 0;
  // Middle click.
  virtual void secondaryActivate(int /*x*/, int /*y*/) {}
  // A host that does not show our exported menu itself asks the item to pop one up there.
  virtual void contextMenu(int /*x*/, int /*y*/) {}

  // The right-click menu as it should look now; asked for whenever a host is about to show it.
  [[nodiscard]] virtual std::vector<MenuEntry> menu() = 0;
  // A menu entry was chosen.
  virtual void perform(MenuAction action, const MenuValue& value) = 0;

  // Whether a tray host shows the item: reported once when it is first known, then on each change
  // (the watcher appearing, restarting or going away). When false the program should say so once
  // and fall back to another way of showing the figures.
  virtual void trayShown(bool /*shown*/) {}
};

}  // namespace quillmark
