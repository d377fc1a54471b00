#include "app/desktop/tray_linux.h"

#include <cctype>

#include "base/log.h"

namespace quillmark {
namespace {

// The widest the label is likely to get at its current length, so a host that sizes the label by
// the guide does not jitter as digits change.
std::string labelGuide(const std::string& text) {
  std::string guide = text;
  for (char& c : guide) {
    if (std::isdigit(static_cast<unsigned char>(c))) c = '8';
  }
  return guide;
}

}  // namespace

Tray::Tray(LinuxMainLoop& loop, TrayDelegate& delegate) : loop_(loop), delegate_(delegate) {}

Tray::~Tray() { stop(); }

bool Tray::start(std::string& error) {
  if (bus_) return true;
  bus_ = BusConnection::openUser(loop_, error);
  if (!bus_) return false;
  bus_->onDisconnected = [this] { delegate_.trayShown(false); };
  menu_ = std::make_unique<DbusMenu>(
      bus_->get(), [this] { return delegate_.menu(); },
      [this](MenuAction action, const MenuValue& value) { delegate_.perform(action, value); });
  item_ = std::make_unique<StatusNotifierItem>(*bus_, delegate_, kId, DbusMenu::kObjectPath);
  item_->onHostChanged = [this] {
    wanted_.hostShowsLabel = item_->hostShowsLabel();
    redraw();
  };
  scheme_ = std::make_unique<ColorSchemeWatch>(*bus_, [this](TrayGlyphs glyphs) {
    wanted_.glyphs = glyphs;
    redraw();
  });
  if (!title_.empty()) item_->setTitle(title_);
  item_->setToolTip(toolTipTitle_, toolTipBody_);
  redraw();
  if (!menu_->exportObject(error) || !item_->start(error)) {
    stop();
    return false;
  }
  scheme_->start();
  bus_->pump();
  return true;
}

void Tray::stop() {
  scheme_.reset();
  item_.reset();
  menu_.reset();
  bus_.reset();
  drawn_.reset();
}

void Tray::setTitle(const std::string& title) {
  title_ = title;
  if (!item_) return;
  item_->setTitle(title);
  bus_->pump();
}

void Tray::showIcon() {
  wanted_.textMode = false;
  wanted_.text.clear();
  redraw();
}

void Tray::showText(const std::string& text) {
  wanted_.textMode = true;
  wanted_.text = text;
  redraw();
}

void Tray::setToolTip(const std::string& title, const std::string& body) {
  toolTipTitle_ = title;
  toolTipBody_ = body;
  if (!item_) return;
  item_->setToolTip(title, body);
  bus_->pump();
}

void Tray::refreshMenu() {
  if (!menu_) return;
  menu_->refresh();
  bus_->pump();
}

void Tray::redraw() {
  if (!item_ || drawn_ == wanted_) return;
  const Look& look = wanted_;
  // The plain icon is the same for every text, so only its colour can change it.
  if (!look.textMode || look.hostShowsLabel) {
    const bool iconChanged =
        !drawn_ || drawn_->glyphs != look.glyphs || (drawn_->textMode && !drawn_->hostShowsLabel);
    if (iconChanged) item_->setIcon(painter_.icon(look.glyphs));
  } else {
    item_->setIcon(painter_.iconWithText(look.text, look.glyphs));
  }
  item_->setLabel(look.textMode ? look.text : std::string(),
                  look.textMode ? labelGuide(look.text) : std::string());
  drawn_ = look;
  bus_->pump();
}

}  // namespace quillmark
