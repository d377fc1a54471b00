#include "menubar/panel_card_shape.h"

namespace quillmark {

PanelCardShape PanelCardShape::withArrowAt(double width, double height, double requestedArrowX,
                                           bool arrowBelow) {
  const double arrowX = PanelAnchor::clamp(requestedArrowX, width);
  const double top = PanelAnchor::arrowHeight;
  const double half = PanelAnchor::arrowWidth / 2;
  PanelCardShape shape;
  shape.body = ContentRect{0, top, width, height - top};
  shape.arrowLeft = {arrowX - half, top};
  shape.arrowTip = {arrowX, 0};
  shape.arrowRight = {arrowX + half, top};
  if (arrowBelow) {
    // The same outline upside down: body from the top, the arrow hanging from its bottom edge.
    shape.arrowBelow = true;
    shape.body.y = 0;
    const double base = height - top;
    shape.arrowLeft.y = shape.arrowRight.y = base;
    shape.arrowTip.y = height;
  }
  return shape;
}

}  // namespace quillmark
