#pragma once

#include "menubar/hosted_content.h"
#include "menubar/panel_anchor.h"

namespace quillmark {

// The outline of a card (the panel, the first-run tip) in its own coordinates (points, top-left
// origin): a rounded rectangle whose top edge starts arrowHeight below the card's top, and a
// triangle of base arrowWidth centred at arrowX rising to the top edge; when the anchor's arrow is
// below, the same outline upside down (the triangle hangs from the bottom edge). The skins fill
// and stroke it as their background; the arrow's base sits on the straight part of its edge,
// never on a corner, because arrowX is the anchor's clamped position.
struct PanelCardShape {
  struct Point {
    double x = 0;
    double y = 0;
  };

  ContentRect body;
  double corner = PanelAnchor::corner;
  Point arrowLeft;   // on the body's edge that faces the item
  Point arrowTip;    // at the card's top (bottom when arrowBelow)
  Point arrowRight;  // on the body's edge that faces the item
  bool arrowBelow = false;

  // The shape for a card of this size with the anchor's current arrow.
  [[nodiscard]] static PanelCardShape forCard(double width, double height, const PanelAnchor& anchor) {
    return withArrowAt(width, height, anchor.arrowX.value(), anchor.arrowBelow.value());
  }
  // The shape with the arrow at arrowX (clamped as the anchor clamps it).
  [[nodiscard]] static PanelCardShape withArrowAt(double width, double height, double arrowX,
                                                  bool arrowBelow = false);
};

}  // namespace quillmark
