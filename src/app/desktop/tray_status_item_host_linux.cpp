#include "app/desktop/tray_status_item_host_linux.h"

#include "base/log.h"
#include "menubar/status_text.h"

namespace quillmark {

TrayStatusItemHost::TrayStatusItemHost(Environment environment)
    : env_(std::move(environment)), tray_(env_.loop, *this) {
  tray_.setTitle(L(env_.l10n, "menu.title"));
}

TrayStatusItemHost::~TrayStatusItemHost() {
  if (networkToken_ != 0) env_.monitor.network.unsubscribe(networkToken_);
}

bool TrayStatusItemHost::start(std::string& error) {
  if (!tray_.start(error)) return false;
  started_ = true;
  // The network sample is published last in a tick, so the figures are all fresh by then.
  networkToken_ = env_.monitor.network.subscribe([this](const NetSample&) { updateToolTip(); });
  updateToolTip();
  return true;
}

void TrayStatusItemHost::setToolTip(const std::string& text) {
  hint_ = text;
  tray_.setTitle(L(env_.l10n, "menu.title"));
  // The hint changes with the language, and so do the menu's titles.
  tray_.refreshMenu();
  updateToolTip();
}

void TrayStatusItemHost::updateToolTip() {
  const Monitor& m = env_.monitor;
  tray_.setToolTip(hint_,
                   statusText(m.cpu(), m.memory(), m.network(), env_.settings.showNetSpeed(), env_.l10n));
}

void TrayStatusItemHost::showIconOnly() {
  textMode_ = false;
  title_.clear();
  tray_.showIcon();
}

void TrayStatusItemHost::showIconWithText() {
  textMode_ = true;
  if (!title_.empty()) tray_.showText(title_);
}

void TrayStatusItemHost::setTitle(const std::string& title) {
  title_ = title;
  if (textMode_) tray_.showText(title_);
  updateToolTip();
}

AnchorGeometry TrayStatusItemHost::anchor() const {
  return env_.anchorAt ? env_.anchorAt(lastClick_) : AnchorGeometry{};
}

void TrayStatusItemHost::popUpMenu(const std::vector<MenuEntry>& menu,
                                   std::function<void(MenuAction, const MenuValue&)> onChoose) {
  if (env_.popUpMenu) {
    env_.popUpMenu(menu, std::move(onChoose));
  } else {
    Log::debug("The tray host asked for the menu, but this program cannot pop one up itself");
  }
}

void TrayStatusItemHost::remember(int x, int y) {
  // Hosts that do not know where the item is send 0, 0; a real click there is not worth the doubt.
  if (x == 0 && y == 0) {
    lastClick_.reset();
  } else {
    lastClick_ = TrayClick{x, y};
  }
}

void TrayStatusItemHost::activate(int x, int y) {
  remember(x, y);
  if (onClick_) onClick_(StatusClick::left);
}

void TrayStatusItemHost::contextMenu(int x, int y) {
  remember(x, y);
  if (onClick_) onClick_(StatusClick::right);
}

void TrayStatusItemHost::perform(MenuAction action, const MenuValue& value) {
  if (env_.perform) env_.perform(action, value);
}

void TrayStatusItemHost::trayShown(bool shown) {
  shown_ = shown;
  if (env_.trayShown) env_.trayShown(shown);
}

}  // namespace quillmark
