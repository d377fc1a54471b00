#pragma once

#include "views/canvas.h"

namespace quillmark {

// The status icon's three open paths, fitted into box (its 21 × 18 y-up design turned y-down and
// scaled uniformly by box.width / 21), stroked with round caps and joins.
void paintStatusIcon(Canvas& canvas, const Rect& box, Color color, double lineWidth);

// The application icon in a 128-point square: the status icon in white on a rounded teal tile.
// Drawn through the canvas so the PNGs of every size and the SVG come from the same figure.
inline constexpr double kAppIconSize = 128;
void paintAppIcon(Canvas& canvas);

}  // namespace quillmark
