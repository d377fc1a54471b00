#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "views/geometry.h"

namespace quillmark {

// A figure to fill, stroke or clip to, in points. Built once and handed to a Canvas, which
// replays it on its backend.
class Path {
 public:
  enum class Verb { move, line, curve, close };
  struct Element {
    Verb verb;
    Point points[3];  // move/line use [0]; curve uses all three (two controls, then the end)
  };

  Path& moveTo(Point p);
  Path& lineTo(Point p);
  Path& curveTo(Point control1, Point control2, Point end);
  Path& close();
  Path& addRect(const Rect& r);
  // Corners are quarter circles of `radius`, reduced where the rectangle is too small.
  Path& addRoundedRect(const Rect& r, double radius);
  Path& addEllipse(const Rect& r);

  [[nodiscard]] const std::vector<Element>& elements() const { return elements_; }
  [[nodiscard]] bool empty() const { return elements_.empty(); }

 private:
  std::vector<Element> elements_;
};

// A linear gradient between two points, with colour stops at offsets 0-1 in ascending order.
struct Gradient {
  Point start;
  Point end;
  struct Stop {
    double offset;
    Color color;
  };
  std::vector<Stop> stops;
};

enum class FontWeight { regular, medium, bold };

// The system's interface face at `size` points; `monospacedDigits` keeps changing numbers from
// jittering sideways.
struct Font {
  double size = 12;
  FontWeight weight = FontWeight::regular;
  bool monospacedDigits = false;
  bool operator==(const Font&) const = default;
};

enum class TextAlign { leading, center, trailing };

// How a text is set into its box: on one line (cut with an ellipsis when `ellipsize` and it does
// not fit), or wrapped at `wrapWidth` when that is positive.
struct TextStyle {
  Font font;
  Color color;
  TextAlign align = TextAlign::leading;
  double wrapWidth = 0;
  bool ellipsize = false;
};

// An RGBA bitmap (straight alpha, rows top to bottom), e.g. an application icon.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> rgba;  // width * height * 4 bytes
};

// Sets text the way the backend will draw it. Layout measures through this before painting.
class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;
  // The size of the text's ink box as drawn with style (its wrap width applies; ellipsizing does
  // not, so a caller can tell whether the text would be cut).
  [[nodiscard]] virtual Size measure(std::string_view utf8, const TextStyle& style) = 0;
};

// The only way a view draws. Coordinates are points; the backend multiplies by scale() so the
// panel is sharp at 1x and 2x. save()/restore() bracket translate and clip. One canvas belongs to
// one thread at a time (the main thread for a window, any thread for an offscreen rendering).
class Canvas : public TextMeasurer {
 public:
  [[nodiscard]] virtual double scale() const = 0;
  virtual void save() = 0;
  virtual void restore() = 0;
  virtual void translate(double dx, double dy) = 0;
  // Scales what follows about the current origin (the flip narrows a face this way).
  virtual void scaleBy(double sx, double sy) = 0;
  virtual void clip(const Path& path) = 0;
  virtual void fill(const Path& path, Color color) = 0;
  virtual void fill(const Path& path, const Gradient& gradient) = 0;
  virtual void stroke(const Path& path, Color color, double width) = 0;
  // Draws text with its top-left corner at the top-left of box, aligned inside box's width; an
  // ellipsized style cuts at box.width.
  virtual void drawText(std::string_view utf8, const TextStyle& style, const Rect& box) = 0;
  virtual void drawImage(const Image& image, const Rect& box) = 0;
};

}  // namespace quillmark
