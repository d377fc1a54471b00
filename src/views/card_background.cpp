#include "views/card_background.h"

namespace quillmark {

Path cardPath(const PanelCardShape& shape) {
  const ContentRect& b = shape.body;
  const double r = shape.corner;
  const double k = r * 0.45;  // control distance that makes a quarter curve look round
  const double top = b.y;
  const double left = b.x;
  const double right = b.x + b.width;
  const double bottom = b.y + b.height;
  const auto& l = shape.arrowLeft;
  const auto& t = shape.arrowTip;
  const auto& a = shape.arrowRight;
  Path card;
  card.moveTo({left + r, top});
  card.lineTo({l.x - 2, top});
  card.curveTo({l.x + 1, top}, {t.x - 2, t.y + 0.6}, {t.x, t.y});
  card.curveTo({t.x + 2, t.y + 0.6}, {a.x - 1, top}, {a.x + 2, top});
  card.lineTo({right - r, top});
  card.curveTo({right - k, top}, {right, top + k}, {right, top + r});
  card.lineTo({right, bottom - r});
  card.curveTo({right, bottom - k}, {right - k, bottom}, {right - r, bottom});
  card.lineTo({left + r, bottom});
  card.curveTo({left + k, bottom}, {left, bottom - k}, {left, bottom - r});
  card.lineTo({left, top + r});
  card.curveTo({left, top + k}, {left + k, top}, {left + r, top});
  card.close();
  return card;
}

void paintCardBackground(Canvas& canvas, const PanelCardShape& shape, const Theme& theme) {
  const Path card = cardPath(shape);
  const double bottom = shape.body.y + shape.body.height;
  canvas.fill(card, Gradient{{0, 0}, {0, bottom}, {{0, theme.backgroundTop}, {1, theme.backgroundBottom}}});
  canvas.stroke(card, theme.border, 1);
}

}  // namespace quillmark
