#pragma once

#include <string>
#include <variant>
#include <vector>

#include "menubar/skin_manager.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"

namespace quillmark {

// What choosing a menu entry does (MenuBarController::perform).
enum class MenuAction { none, setMenuBarStyle, toggleNetSpeed, setSkin, setInterval, openSettings, quitApp };

// The value an entry carries to its action, as a platform menu item's represented object would:
// nothing, a string (a raw value) or a number. Actions check its type and ignore a wrong one.
using MenuValue = std::variant<std::monostate, std::string, double>;

// One entry of the status item's right-click menu, in plain values so each platform builds its
// own menu from it (NSMenu on macOS, dbusmenu on Linux).
struct MenuEntry {
  bool separator = false;
  std::string title;
  MenuAction action = MenuAction::none;
  MenuValue value;
  bool checked = false;
  bool enabled = true;
  std::string keyEquivalent;
  std::vector<MenuEntry> submenu;
};

// The intervals the menu offers, in seconds.
inline constexpr double kMenuIntervals[] = {1.0, 2.0, 5.0};

// Builds the menu afresh from the current settings, skin and language: the title (disabled), the
// menu-bar style, network rates, skin and interval choices with the current one checked, then
// settings and quit. An interval that is none of the offered ones checks no entry.
[[nodiscard]] std::vector<MenuEntry> buildMenu(const SettingsManager& settings, const SkinManager& skins,
                                               const L10n& l10n);

}  // namespace quillmark
