#pragma once

#include <cairo.h>

#include <memory>
#include <string>
#include <unordered_map>

#include "views/canvas.h"

typedef struct _PangoContext PangoContext;

namespace quillmark {

// The Canvas on Cairo, with text set by Pango through fontconfig (so CJK and Thai fall back to
// whatever covering fonts are installed). Either draws into a caller's cairo_t (a GTK window's)
// or owns an offscreen ARGB image (tests, benchmarks, --render-panel). Not thread-safe; one
// thread at a time.
class CairoCanvas final : public Canvas {
 public:
  // Draws into cr, whose user space is device pixels; the canvas scales it by `scale`.
  CairoCanvas(cairo_t* cr, double scale);
  // An offscreen canvas of size points at scale, cleared to transparent.
  [[nodiscard]] static std::unique_ptr<CairoCanvas> offscreen(Size size, double scale);
  ~CairoCanvas() override;
  CairoCanvas(const CairoCanvas&) = delete;
  CairoCanvas& operator=(const CairoCanvas&) = delete;

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

  // Offscreen canvases only: the colour of one device pixel (straight alpha), and the PNG.
  [[nodiscard]] Color pixel(int x, int y) const;
  // False with a message in error when the file cannot be written.
  [[nodiscard]] bool writePng(const std::string& path, std::string& error) const;

 private:
  CairoCanvas(cairo_surface_t* surface, cairo_t* cr, double scale);
  void replay(const Path& path);

  cairo_surface_t* surface_ = nullptr;  // owned, offscreen only
  cairo_t* cr_ = nullptr;
  bool ownsContext_ = false;
  double scale_ = 1;
  PangoContext* pango_ = nullptr;
  // Layout measures the same texts again and again (a stack asks its children for their heights
  // at every level); shaping is the expensive part, so results are kept until the cache fills.
  std::unordered_map<std::string, Size> measured_;
};

}  // namespace quillmark
