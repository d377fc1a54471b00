#pragma once

#include <functional>
#include <vector>

#include "menubar/menu_model.h"

namespace quillmark {

// Pops the status item's menu up at the pointer as a GTK menu, for tray hosts that ask the item to
// show its menu (StatusNotifierItem.ContextMenu) instead of drawing the exported dbusmenu
// themselves. On a Wayland compositor with layer-shell, where a menu needs a window of ours to hang
// from, it hangs from the monitor's top-right corner (the tray's likely place). onChoose runs on
// the main thread once an entry is chosen. GTK must be initialised.
void gtkPopUpMenu(const std::vector<MenuEntry>& entries,
                  std::function<void(MenuAction, const MenuValue&)> onChoose);

}  // namespace quillmark
