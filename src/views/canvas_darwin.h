#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include "views/canvas.h"

namespace quillmark {

// The Canvas on CoreGraphics, with text set by CoreText in the system interface font. Draws into
// a caller's context: the panel view's (flipped, origin top-left) or a bitmap context (origin
// bottom-left, which the canvas flips). Main thread, like the view that owns the context.
class CoreGraphicsCanvas final : public Canvas {
 public:
  // `size` is the drawing area in points; `originAtTop` tells whether the context already has a
  // top-left origin with y growing downwards; its user space is points times `scale` pixels.
  // With a null context the canvas only measures (the panel's layout measurer); drawing through
  // it is not allowed.
  CoreGraphicsCanvas(CGContextRef context, Size size, double scale, bool originAtTop);
  ~CoreGraphicsCanvas() override;
  CoreGraphicsCanvas(const CoreGraphicsCanvas&) = delete;
  CoreGraphicsCanvas& operator=(const CoreGraphicsCanvas&) = delete;

  [[nodiscard]] double scale() const override { return scale_; }
  void save() override;
  void restore() override;
  void translate(double dx, double dy) override;
  void scaleBy(double sx, double sy) override;
  void clip(const Path& path) override;
  void fill(const Path& path, Color color) override;
  void fill(const Path& path, const Gradient& gradient) override;
  void stroke(const Path& path, Color color, double width) override;
  void drawText(std::string_view utf8, const TextStyle& style, const Rect& box) override;
  void drawImage(const Image& image, const Rect& box) override;
  [[nodiscard]] Size measure(std::string_view utf8, const TextStyle& style) override;

 private:
  void replay(const Path& path);

  CGContextRef context_;
  double scale_;
};

}  // namespace quillmark
