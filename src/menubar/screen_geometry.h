#pragma once

#include <optional>
#include <string>

namespace quillmark {

// A point on the screen in points, in the desktop's coordinates with y growing upwards (the
// system's screen space on macOS; the Linux shell converts its y-down pixels before using these).
struct ScreenPoint {
  double x = 0;
  double y = 0;
  friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

// A rectangle in the same space: origin at its lower-left corner, width and height not negative.
struct ScreenRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  [[nodiscard]] double minX() const { return x; }
  [[nodiscard]] double maxX() const { return x + width; }
  [[nodiscard]] double midX() const { return x + width / 2; }
  [[nodiscard]] double minY() const { return y; }
  [[nodiscard]] double maxY() const { return y + height; }
  friend bool operator==(const ScreenRect&, const ScreenRect&) = default;
};

// How rectangles appear in the diagnostic log: "(x, y, width, height)" with one decimal.
[[nodiscard]] std::string describe(const ScreenRect& rect);

// Where the status item is at the moment of a click, as the platform sees it: the button's
// rectangle on screen and the visible frame (without menu bar and Dock) of the screen it is on.
// Either may be unknown: a button not yet in a window, a machine without a screen.
struct AnchorGeometry {
  std::optional<ScreenRect> item;
  std::optional<ScreenRect> visibleFrame;
};

}  // namespace quillmark
