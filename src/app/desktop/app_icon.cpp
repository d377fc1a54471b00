#include "app/desktop/app_icon.h"

#include "menubar/status_icon.h"

namespace quillmark {

void paintStatusIcon(Canvas& canvas, const Rect& box, Color color, double lineWidth) {
  const double k = box.width / StatusIcon::kWidth;
  for (const auto points : StatusIcon::kPaths) {
    Path path;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const Point p{box.x + points[i].x * k, box.y + (StatusIcon::kHeight - points[i].y) * k};
      if (i == 0) {
        path.moveTo(p);
      } else {
        path.lineTo(p);
      }
    }
    canvas.stroke(path, color, lineWidth);
  }
}

void paintAppIcon(Canvas& canvas) {
  // A tile a little inside the square, as icon themes expect, lit from the top.
  const Rect tile{8, 8, 112, 112};
  Path shape;
  shape.addRoundedRect(tile, 26);
  canvas.fill(shape, Gradient{{64, 8}, {64, 120}, {{0, Color::rgb(0x2dd4bf)}, {1, Color::rgb(0x0f766e)}}});
  // The glyph at four times its menu-bar size, a little heavier so it holds up at 16 pixels.
  constexpr double k = 4;
  const Rect glyph{(kAppIconSize - StatusIcon::kWidth * k) / 2, (kAppIconSize - StatusIcon::kHeight * k) / 2,
                   StatusIcon::kWidth * k, StatusIcon::kHeight * k};
  paintStatusIcon(canvas, glyph, Color::rgb(0xffffff), StatusIcon::kLineWidth * k * 1.2);
}

}  // namespace quillmark
