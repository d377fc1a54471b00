#pragma once

#include <optional>

#include "app/desktop/tray_delegate.h"
#include "menubar/tray_anchor.h"

namespace quillmark {

// The monitor under a tray click (the primary one without a click), from GDK, in ScreenRect
// space: logical pixels with y negated. Tray hosts report X screen pixels, which on a scaled
// screen (GDK_SCALE) are divided by the scale first. GTK must be initialised.
[[nodiscard]] MonitorArea gtkMonitorArea(const std::optional<TrayClick>& click);

// The anchor the tray item asks for: trayAnchor over the monitor of the click.
[[nodiscard]] AnchorGeometry gtkTrayAnchor(const std::optional<TrayClick>& click);

}  // namespace quillmark
