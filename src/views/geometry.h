#pragma once

#include <algorithm>
#include <cstdint>

namespace quillmark {

// Plain geometry of the panel, in points (a point is `scale` device pixels). y grows downwards,
// the origin is a view's top-left corner. Values only; any thread.
struct Point {
  double x = 0;
  double y = 0;
  bool operator==(const Point&) const = default;
};

struct Size {
  double width = 0;
  double height = 0;
  bool operator==(const Size&) const = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  [[nodiscard]] double maxX() const { return x + width; }
  [[nodiscard]] double maxY() const { return y + height; }
  [[nodiscard]] double midX() const { return x + width / 2; }
  [[nodiscard]] double midY() const { return y + height / 2; }
  [[nodiscard]] bool contains(Point p) const { return p.x >= x && p.x < maxX() && p.y >= y && p.y < maxY(); }
  // Whether other lies inside this rectangle, allowing `slack` points of rounding.
  [[nodiscard]] bool encloses(const Rect& other, double slack = 0.5) const {
    return other.x >= x - slack && other.y >= y - slack && other.maxX() <= maxX() + slack &&
           other.maxY() <= maxY() + slack;
  }
  [[nodiscard]] Rect inset(double dx, double dy) const {
    return {x + dx, y + dy, std::max(0.0, width - 2 * dx), std::max(0.0, height - 2 * dy)};
  }
  [[nodiscard]] Rect offset(double dx, double dy) const { return {x + dx, y + dy, width, height}; }
  bool operator==(const Rect&) const = default;
};

// Straight (not premultiplied) RGBA, each 0-1.
struct Color {
  double r = 0;
  double g = 0;
  double b = 0;
  double a = 1;

  [[nodiscard]] static constexpr Color rgb(std::uint32_t hex, double alpha = 1) {
    return {((hex >> 16) & 0xff) / 255.0, ((hex >> 8) & 0xff) / 255.0, (hex & 0xff) / 255.0, alpha};
  }
  [[nodiscard]] constexpr Color withAlpha(double alpha) const { return {r, g, b, alpha}; }
  bool operator==(const Color&) const = default;
};

}  // namespace quillmark
