#include "menubar/panel_anchor.h"

#include <algorithm>

namespace quillmark {

double PanelAnchor::clamp(double arrowX, double width) {
  const double inset = corner + arrowWidth / 2;
  return std::min(std::max(width - inset, inset), std::max(arrowX, inset));
}

CardPlacement placeUnder(const ScreenRect& item, const std::optional<ScreenRect>& visibleFrame, double width,
                         double height) {
  double x = item.midX() - width / 2;
  if (visibleFrame) {
    x = std::max(x, visibleFrame->minX() + PanelAnchor::screenMargin);
    x = std::min(x, visibleFrame->maxX() - width - PanelAnchor::screenMargin);
  }
  return CardPlacement{ScreenPoint{x, item.minY() - height}, item.midX() - x};
}

CardPlacement placeNear(const ScreenRect& item, const std::optional<ScreenRect>& visibleFrame, double width,
                        double height) {
  CardPlacement placement = placeUnder(item, visibleFrame, width, height);
  if (visibleFrame && placement.origin.y < visibleFrame->minY() &&
      item.minY() + item.height / 2 < visibleFrame->minY() + visibleFrame->height / 2) {
    placement.origin.y = item.maxY();
    placement.arrowBelow = true;
  }
  return placement;
}

}  // namespace quillmark
