#include "views/card_background.h"

namespace quillmark {

Path cardPath(const PanelCardShape& shape) {
  // Drawn as the arrow-up outline; a card standing on its item is the same outline mirrored, so
  // its arrow hangs from the bottom edge.
  const double height = shape.arrowBelow ? shape.arrowTip.y : shape.body.y + shape.body.height;
  const auto at = [&](double x, double y) { return Point{x, shape.arrowBelow ? height - y : y}; };
  const auto up = [&](const PanelCardShape::Point& p) { return shape.arrowBelow ? height - p.y : p.y; };
  const ContentRect& b = shape.body;
  const double r = shape.corner;
  const double k = r * 0.45;  // control distance that makes a quarter curve look round
  const double top = shape.arrowBelow ? height - (b.y + b.height) : b.y;
  const double left = b.x;
  const double right = b.x + b.width;
  const double bottom = top + b.height;
  const auto& l = shape.arrowLeft;
  const auto& t = shape.arrowTip;
  const auto& a = shape.arrowRight;
  const double tipY = up(t);
  Path card;
  card.moveTo(at(left + r, top));
  card.lineTo(at(l.x - 2, top));
  card.curveTo(at(l.x + 1, top), at(t.x - 2, tipY + 0.6), at(t.x, tipY));
  card.curveTo(at(t.x + 2, tipY + 0.6), at(a.x - 1, top), at(a.x + 2, top));
  card.lineTo(at(right - r, top));
  card.curveTo(at(right - k, top), at(right, top + k), at(right, top + r));
  card.lineTo(at(right, bottom - r));
  card.curveTo(at(right, bottom - k), at(right - k, bottom), at(right - r, bottom));
  card.lineTo(at(left + r, bottom));
  card.curveTo(at(left + k, bottom), at(left, bottom - k), at(left, bottom - r));
  card.lineTo(at(left, top + r));
  card.curveTo(at(left, top + k), at(left + k, top), at(left + r, top));
  card.close();
  return card;
}

void paintCardBackground(Canvas& canvas, const PanelCardShape& shape, const Theme& theme) {
  const Path card = cardPath(shape);
  const double bottom = shape.arrowBelow ? shape.arrowTip.y : shape.body.y + shape.body.height;
  canvas.fill(card, Gradient{{0, 0}, {0, bottom}, {{0, theme.backgroundTop}, {1, theme.backgroundBottom}}});
  canvas.stroke(card, theme.border, 1);
}

}  // namespace quillmark
