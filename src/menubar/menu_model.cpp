#include "menubar/menu_model.h"

#include <utility>

namespace quillmark {
namespace {

MenuEntry item(std::string title, MenuAction action, MenuValue value = {}, bool checked = false) {
  MenuEntry entry;
  entry.title = std::move(title);
  entry.action = action;
  entry.value = std::move(value);
  entry.checked = checked;
  return entry;
}

MenuEntry parent(std::string title, std::vector<MenuEntry> children) {
  MenuEntry entry = item(std::move(title), MenuAction::none);
  entry.submenu = std::move(children);
  return entry;
}

MenuEntry separator() {
  MenuEntry entry;
  entry.separator = true;
  return entry;
}

}  // namespace

std::vector<MenuEntry> buildMenu(const SettingsManager& settings, const SkinManager& skins,
                                 const L10n& l10n) {
  std::vector<MenuEntry> menu;

  MenuEntry title = item(L(l10n, "menu.title"), MenuAction::none);
  title.enabled = false;
  menu.push_back(std::move(title));
  menu.push_back(separator());

  std::vector<MenuEntry> styles;
  for (const auto& [mode, key] :
       {std::pair{MenuBarMode::icon, "menu.style.icon"}, std::pair{MenuBarMode::text, "menu.style.text"}}) {
    styles.push_back(item(L(l10n, key), MenuAction::setMenuBarStyle, std::string(rawValue(mode)),
                          mode == settings.menuBarMode()));
  }
  menu.push_back(parent(L(l10n, "menu.style"), std::move(styles)));
  menu.push_back(item(L(l10n, "menu.netSpeed"), MenuAction::toggleNetSpeed, {}, settings.showNetSpeed()));

  std::vector<MenuEntry> skinEntries;
  for (const PanelSkin skin : kAllPanelSkins) {
    skinEntries.push_back(item(displayName(skin, l10n), MenuAction::setSkin, std::string(rawValue(skin)),
                               skin == skins.skin()));
  }
  menu.push_back(parent(L(l10n, "menu.skin"), std::move(skinEntries)));
  menu.push_back(separator());

  std::vector<MenuEntry> intervals;
  for (const auto& [seconds, key] :
       {std::pair{kMenuIntervals[0], "menu.interval.1s"}, std::pair{kMenuIntervals[1], "menu.interval.2s"},
        std::pair{kMenuIntervals[2], "menu.interval.5s"}}) {
    // Exact on purpose: a stored interval is one of these numbers or nothing is checked.
    intervals.push_back(
        item(L(l10n, key), MenuAction::setInterval, seconds, seconds == settings.refreshInterval()));
  }
  menu.push_back(parent(L(l10n, "menu.interval"), std::move(intervals)));
  menu.push_back(separator());

  MenuEntry openSettings = item(L(l10n, "menu.settings"), MenuAction::openSettings);
  openSettings.keyEquivalent = ",";
  menu.push_back(std::move(openSettings));
  MenuEntry quit = item(L(l10n, "menu.quit"), MenuAction::quitApp);
  quit.keyEquivalent = "q";
  menu.push_back(std::move(quit));
  return menu;
}

}  // namespace quillmark
