#include "views/symbols.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillmark {
namespace {

constexpr double kDesign = 16;

Point polar(Point c, double radius, double angle) {
  return {c.x + radius * std::cos(angle), c.y + radius * std::sin(angle)};
}

// The arrow pointer with its tip at (x, y), in design units.
Path pointer(double x, double y) {
  Path p;
  p.moveTo({x, y})
      .lineTo({x, y + 10})
      .lineTo({x + 2.6, y + 7.6})
      .lineTo({x + 4.4, y + 11.4})
      .lineTo({x + 6, y + 10.6})
      .lineTo({x + 4.3, y + 7})
      .lineTo({x + 7.6, y + 7})
      .close();
  return p;
}

void gauge(Canvas& canvas, Color ink, Color accent) {
  const Point c{8, 10};
  Path dial;
  constexpr int kSteps = 24;
  for (int i = 0; i <= kSteps; ++i) {
    const double a = std::numbers::pi + std::numbers::pi * i / kSteps;
    if (i == 0)
      dial.moveTo(polar(c, 7, a));
    else
      dial.lineTo(polar(c, 7, a));
  }
  canvas.stroke(dial, ink, 1.5);
  for (int i = 0; i < 5; ++i) {
    const Point d = polar(c, 4.6, std::numbers::pi + std::numbers::pi * (i + 0.5) / 5);
    canvas.fill(Path().addEllipse({d.x - 0.7, d.y - 0.7, 1.4, 1.4}), ink);
  }
  // Two thirds of the way round, like the symbol's "67 percent".
  canvas.stroke(Path().moveTo(c).lineTo(polar(c, 5.5, std::numbers::pi * (1 + 0.67))), accent, 1.6);
  canvas.fill(Path().addEllipse({c.x - 1.6, c.y - 1.6, 3.2, 3.2}), accent);
}

void cursorClick(Canvas& canvas, Color ink) {
  const Path arrow = pointer(6, 5);
  canvas.fill(arrow, ink);
  Path rays;
  rays.moveTo({4.2, 3.2}).lineTo({2.2, 1.2});
  rays.moveTo({6, 2.4}).lineTo({6, 0});
  rays.moveTo({3.4, 5}).lineTo({1, 5});
  rays.moveTo({7.8, 3.2}).lineTo({9.8, 1.2});
  canvas.stroke(rays, ink, 1.2);
}

void menuCursor(Canvas& canvas, Color ink) {
  canvas.stroke(Path().addRoundedRect({1, 1.5, 11, 10}, 1.8), ink, 1.2);
  Path lines;
  for (double y : {4.5, 7.0, 9.5}) lines.moveTo({3.5, y}).lineTo({9.5, y});
  canvas.stroke(lines, ink, 1);
  // Outlined in black so the pointer stands out where it overlaps the menu.
  const Path arrow = pointer(8.5, 5);
  canvas.stroke(arrow, Color::rgb(0x000000, 0.7), 1.4);
  canvas.fill(arrow, ink);
}

void gear(Canvas& canvas, Color ink) {
  const Point c{8, 8};
  Path teeth;
  for (int i = 0; i < 8; ++i) {
    const double a = i * std::numbers::pi / 4;
    teeth.moveTo(polar(c, 4.5, a)).lineTo(polar(c, 7.5, a));
  }
  canvas.stroke(teeth, ink, 2.2);
  canvas.stroke(Path().addEllipse({c.x - 4.5, c.y - 4.5, 9, 9}), ink, 1.8);
}

}  // namespace

void drawSymbol(Canvas& canvas, Symbol symbol, const Rect& box, Color ink, Color accent) {
  const double side = std::min(box.width, box.height);
  canvas.save();
  canvas.translate(box.x + (box.width - side) / 2, box.y + (box.height - side) / 2);
  canvas.scaleBy(side / kDesign, side / kDesign);
  switch (symbol) {
    case Symbol::gauge:
      gauge(canvas, ink, accent);
      break;
    case Symbol::cursorClick:
      cursorClick(canvas, ink);
      break;
    case Symbol::menuCursor:
      menuCursor(canvas, ink);
      break;
    case Symbol::gear:
      gear(canvas, ink);
      break;
  }
  canvas.restore();
}

}  // namespace quillmark
