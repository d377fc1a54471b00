#pragma once

#include <functional>

#include "app/desktop/bus_connection_linux.h"
#include "app/desktop/tray_pixmaps.h"

struct sd_bus_slot;

namespace quillmark {

// Follows the desktop's colour-scheme preference (org.freedesktop.appearance color-scheme through
// the settings portal) to pick the tray glyphs: dark glyphs when the desktop prefers a light look,
// light glyphs otherwise, and when there is no portal. The panel's own colour is not published
// anywhere, so this is the nearest cheap hint. Main thread only.
class ColorSchemeWatch {
 public:
  ColorSchemeWatch(BusConnection& bus, std::function<void(TrayGlyphs)> onChange);
  ~ColorSchemeWatch();
  ColorSchemeWatch(const ColorSchemeWatch&) = delete;
  ColorSchemeWatch& operator=(const ColorSchemeWatch&) = delete;

  // Asks once and then listens for changes; answers arrive through onChange.
  void start();
  [[nodiscard]] TrayGlyphs glyphs() const { return glyphs_; }

 private:
  void apply(std::uint32_t scheme);

  BusConnection& bus_;
  std::function<void(TrayGlyphs)> onChange_;
  TrayGlyphs glyphs_ = TrayGlyphs::light;
  sd_bus_slot* match_ = nullptr;
  sd_bus_slot* query_ = nullptr;

  friend struct ColorSchemeCallbacks;
};

}  // namespace quillmark
