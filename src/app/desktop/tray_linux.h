#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/desktop/bus_connection_linux.h"
#include "app/desktop/color_scheme_linux.h"
#include "app/desktop/dbus_menu_linux.h"
#include "app/desktop/status_notifier_item_linux.h"
#include "app/desktop/tray_delegate.h"
#include "app/desktop/tray_pixmaps.h"

namespace quillmark {

// The desktop program's tray item, self-contained: its own session-bus connection (driven by the
// main loop), the StatusNotifierItem, its dbusmenu, and the drawing of its images in the glyph
// colour the desktop's colour scheme suggests.
//
// Use: construct with the loop and a delegate, start() once, then showIcon() or showText(text)
// whenever the mode or the text changes (every sampling tick in text mode is fine: nothing is
// drawn or sent when the text is the same, and nothing is announced unless the pixels changed),
// setToolTip() with the figures, refreshMenu() after a setting the menu shows changed elsewhere.
// stop() (or destruction) takes the item off the bus. Main thread only.
class Tray {
 public:
  static constexpr const char* kId = "quillmark";

  Tray(LinuxMainLoop& loop, TrayDelegate& delegate);
  ~Tray();
  Tray(const Tray&) = delete;
  Tray& operator=(const Tray&) = delete;

  // Connects and registers; false with a sentence in error when there is no session bus or the
  // bus refuses the objects. A missing tray host is no error: see TrayDelegate::trayShown.
  [[nodiscard]] bool start(std::string& error);
  void stop();

  // The item's accessible name, as hosts list it.
  void setTitle(const std::string& title);
  // Icon mode: the status icon alone, no label.
  void showIcon();
  // Text mode: the icon followed by text, drawn into the item's images (except where the host
  // shows the Ayatana label itself) and set as the Ayatana label.
  void showText(const std::string& text);
  void setToolTip(const std::string& title, const std::string& body);
  void refreshMenu();

 private:
  struct Look {
    bool textMode = false;
    std::string text;
    TrayGlyphs glyphs = TrayGlyphs::light;
    bool hostShowsLabel = false;
    bool operator==(const Look&) const = default;
  };
  void redraw();

  LinuxMainLoop& loop_;
  TrayDelegate& delegate_;
  TrayPainter painter_;
  Look wanted_;
  std::optional<Look> drawn_;
  std::string title_;
  std::string toolTipTitle_;
  std::string toolTipBody_;
  std::unique_ptr<BusConnection> bus_;
  std::unique_ptr<DbusMenu> menu_;
  std::unique_ptr<StatusNotifierItem> item_;
  std::unique_ptr<ColorSchemeWatch> scheme_;
};

}  // namespace quillmark
