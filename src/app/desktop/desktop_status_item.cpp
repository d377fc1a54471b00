#include "app/desktop/desktop_status_item.h"

namespace quillmark {

void DesktopStatusItem::attach(TrayItem* tray) {
  tray_ = tray;
  if (!tray_) return;
  tray_->setToolTip(toolTip_);
  pushTitle();
}

void DesktopStatusItem::setToolTip(const std::string& text) {
  toolTip_ = text;
  if (tray_) tray_->setToolTip(text);
}

void DesktopStatusItem::showIconOnly() {
  textMode_ = false;
  title_.clear();
  pushTitle();
}

void DesktopStatusItem::showIconWithText() {
  textMode_ = true;
  pushTitle();
}

void DesktopStatusItem::setTitle(const std::string& title) {
  title_ = title;
  pushTitle();
}

void DesktopStatusItem::pushTitle() {
  if (tray_) tray_->setTitle(textMode_ ? title_ : std::string());
}

void DesktopStatusItem::activate(int x, int y) {
  // Hosts that do not know where the item is send 0, 0; a real click there is not worth the doubt.
  if (x == 0 && y == 0) {
    lastClick_.reset();
  } else {
    lastClick_ = TrayClick{x, y};
  }
  if (onClick_) onClick_(StatusClick::left);
}

std::vector<MenuEntry> DesktopStatusItem::menu() const {
  return buildMenu ? buildMenu() : std::vector<MenuEntry>{};
}

void DesktopStatusItem::menuAction(MenuAction action, const MenuValue& value) {
  if (perform) perform(action, value);
}

void DesktopStatusItem::trayHostChanged(bool present) {
  trayHostPresent_ = present;
  if (onTrayHostChanged) onTrayHostChanged(present);
}

}  // namespace quillmark
