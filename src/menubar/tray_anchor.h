#pragma once

#include <optional>

#include "menubar/screen_geometry.h"

namespace quillmark {

// One monitor as the desktop describes it (in ScreenRect space, y up): its whole frame, and the
// work area that panels and docks leave free (their struts taken off).
struct MonitorArea {
  ScreenRect frame;
  ScreenRect workArea;
};

// A tray item on Linux tells neither its size nor its place; a click reports at most a point
// (StatusNotifierItem.Activate's x, y), and the first-run tip has not even that. This stands in
// for the status button: an item kTrayItemSize wide that fills the panel strip the point lies in
// (so a card hangs just below a top bar, or stands just above a bottom one), or a square around
// the point when it lies inside the work area (a floating dock, a host that reports the pointer).
// Without a point the item is guessed at the right end of the monitor's panel strip: the top one,
// else the bottom one, else the monitor's top-right corner. The visible frame is the work area.
inline constexpr double kTrayItemSize = 24;

[[nodiscard]] AnchorGeometry trayAnchor(const std::optional<ScreenPoint>& click, const MonitorArea& monitor);

}  // namespace quillmark
