#include "views/canvas.h"

#include <algorithm>

namespace quillmark {
namespace {

// Control-point distance that makes a cubic Bezier follow a quarter circle closely.
constexpr double kQuarterArc = 0.5522847498;

}  // namespace

Path& Path::moveTo(Point p) {
  elements_.push_back({Verb::move, {p, {}, {}}});
  return *this;
}

Path& Path::lineTo(Point p) {
  elements_.push_back({Verb::line, {p, {}, {}}});
  return *this;
}

Path& Path::curveTo(Point control1, Point control2, Point end) {
  elements_.push_back({Verb::curve, {control1, control2, end}});
  return *this;
}

Path& Path::close() {
  elements_.push_back({Verb::close, {}});
  return *this;
}

Path& Path::addRect(const Rect& r) {
  return moveTo({r.x, r.y})
      .lineTo({r.maxX(), r.y})
      .lineTo({r.maxX(), r.maxY()})
      .lineTo({r.x, r.maxY()})
      .close();
}

Path& Path::addRoundedRect(const Rect& r, double radius) {
  const double rad = std::clamp(radius, 0.0, std::min(r.width, r.height) / 2);
  if (rad <= 0) return addRect(r);
  const double k = rad * kQuarterArc;
  moveTo({r.x + rad, r.y});
  lineTo({r.maxX() - rad, r.y});
  curveTo({r.maxX() - rad + k, r.y}, {r.maxX(), r.y + rad - k}, {r.maxX(), r.y + rad});
  lineTo({r.maxX(), r.maxY() - rad});
  curveTo({r.maxX(), r.maxY() - rad + k}, {r.maxX() - rad + k, r.maxY()}, {r.maxX() - rad, r.maxY()});
  lineTo({r.x + rad, r.maxY()});
  curveTo({r.x + rad - k, r.maxY()}, {r.x, r.maxY() - rad + k}, {r.x, r.maxY() - rad});
  lineTo({r.x, r.y + rad});
  curveTo({r.x, r.y + rad - k}, {r.x + rad - k, r.y}, {r.x + rad, r.y});
  return close();
}

Path& Path::addEllipse(const Rect& r) {
  const double rx = r.width / 2;
  const double ry = r.height / 2;
  const double kx = rx * kQuarterArc;
  const double ky = ry * kQuarterArc;
  const Point c{r.midX(), r.midY()};
  moveTo({c.x + rx, c.y});
  curveTo({c.x + rx, c.y + ky}, {c.x + kx, c.y + ry}, {c.x, c.y + ry});
  curveTo({c.x - kx, c.y + ry}, {c.x - rx, c.y + ky}, {c.x - rx, c.y});
  curveTo({c.x - rx, c.y - ky}, {c.x - kx, c.y - ry}, {c.x, c.y - ry});
  curveTo({c.x + kx, c.y - ry}, {c.x + rx, c.y - ky}, {c.x + rx, c.y});
  return close();
}

}  // namespace quillmark
