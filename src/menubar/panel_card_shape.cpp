#include "menubar/panel_card_shape.h"

namespace quillmark {

PanelCardShape PanelCardShape::withArrowAt(double width, double height, double requestedArrowX) {
  const double arrowX = PanelAnchor::clamp(requestedArrowX, width);
  const double top = PanelAnchor::arrowHeight;
  const double half = PanelAnchor::arrowWidth / 2;
  PanelCardShape shape;
  shape.body = ContentRect{0, top, width, height - top};
  shape.arrowLeft = {arrowX - half, top};
  shape.arrowTip = {arrowX, 0};
  shape.arrowRight = {arrowX + half, top};
  return shape;
}

}  // namespace quillmark
