#include "views/canvas_cairo.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>

namespace quillmark {
namespace {

// The interface face; fontconfig falls back per character for scripts these lack.
constexpr const char* kFamilies = "Noto Sans, DejaVu Sans, Sans";

PangoWeight pangoWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::regular:
      return PANGO_WEIGHT_NORMAL;
    case FontWeight::medium:
      return PANGO_WEIGHT_MEDIUM;
    case FontWeight::bold:
      return PANGO_WEIGHT_BOLD;
  }
  return PANGO_WEIGHT_NORMAL;
}

// An owning handle for the GObject types Pango hands out.
struct LayoutDeleter {
  void operator()(PangoLayout* layout) const { g_object_unref(layout); }
};
using LayoutPtr = std::unique_ptr<PangoLayout, LayoutDeleter>;

LayoutPtr makeLayout(PangoContext* context, std::string_view utf8, const TextStyle& style, bool forDrawing,
                     double boxWidth) {
  LayoutPtr layout(pango_layout_new(context));
  PangoFontDescription* font = pango_font_description_from_string(kFamilies);
  pango_font_description_set_absolute_size(font, style.font.size * PANGO_SCALE);
  pango_font_description_set_weight(font, pangoWeight(style.font.weight));
  pango_layout_set_font_description(layout.get(), font);
  pango_font_description_free(font);
  if (style.font.monospacedDigits) {
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_font_features_new("tnum"));
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
  }
  pango_layout_set_text(layout.get(), utf8.data(), static_cast<int>(utf8.size()));
  if (style.wrapWidth > 0) {
    pango_layout_set_width(layout.get(), static_cast<int>(style.wrapWidth * PANGO_SCALE));
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    pango_layout_set_alignment(layout.get(), style.align == TextAlign::center     ? PANGO_ALIGN_CENTER
                                             : style.align == TextAlign::trailing ? PANGO_ALIGN_RIGHT
                                                                                  : PANGO_ALIGN_LEFT);
  } else if (forDrawing && style.ellipsize) {
    pango_layout_set_width(layout.get(), static_cast<int>(boxWidth * PANGO_SCALE));
    pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
  }
  return layout;
}

Size layoutSize(PangoLayout* layout) {
  PangoRectangle logical{};
  pango_layout_get_extents(layout, nullptr, &logical);
  return {static_cast<double>(logical.width) / PANGO_SCALE,
          static_cast<double>(logical.height) / PANGO_SCALE};
}

}  // namespace

CairoCanvas::CairoCanvas(cairo_t* cr, double scale) : cr_(cr), scale_(scale) {
  cairo_save(cr_);
  cairo_scale(cr_, scale_, scale_);
  pango_ = pango_cairo_create_context(cr_);
  // Unhinted metrics: a text measures the same at 1x and 2x, so a layout fits at both.
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(pango_, options);
  cairo_font_options_destroy(options);
}

CairoCanvas::CairoCanvas(cairo_surface_t* surface, cairo_t* cr, double scale) : CairoCanvas(cr, scale) {
  surface_ = surface;
  ownsContext_ = true;
}

std::unique_ptr<CairoCanvas> CairoCanvas::offscreen(Size size, double scale) {
  const int width = std::max(1, static_cast<int>(std::ceil(size.width * scale)));
  const int height = std::max(1, static_cast<int>(std::ceil(size.height * scale)));
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
  cairo_t* cr = cairo_create(surface);
  return std::unique_ptr<CairoCanvas>(new CairoCanvas(surface, cr, scale));
}

CairoCanvas::~CairoCanvas() {
  g_object_unref(pango_);
  cairo_restore(cr_);
  if (ownsContext_) cairo_destroy(cr_);
  if (surface_) cairo_surface_destroy(surface_);
}

void CairoCanvas::save() { cairo_save(cr_); }
void CairoCanvas::restore() { cairo_restore(cr_); }
void CairoCanvas::translate(double dx, double dy) { cairo_translate(cr_, dx, dy); }
void CairoCanvas::scaleBy(double sx, double sy) { cairo_scale(cr_, sx, sy); }

void CairoCanvas::replay(const Path& path) {
  cairo_new_path(cr_);
  for (const auto& e : path.elements()) {
    switch (e.verb) {
      case Path::Verb::move:
        cairo_move_to(cr_, e.points[0].x, e.points[0].y);
        break;
      case Path::Verb::line:
        cairo_line_to(cr_, e.points[0].x, e.points[0].y);
        break;
      case Path::Verb::curve:
        cairo_curve_to(cr_, e.points[0].x, e.points[0].y, e.points[1].x, e.points[1].y, e.points[2].x,
                       e.points[2].y);
        break;
      case Path::Verb::close:
        cairo_close_path(cr_);
        break;
    }
  }
}

void CairoCanvas::clip(const Path& path) {
  replay(path);
  cairo_clip(cr_);
}

void CairoCanvas::fill(const Path& path, Color c) {
  replay(path);
  cairo_set_source_rgba(cr_, c.r, c.g, c.b, c.a);
  cairo_fill(cr_);
}

void CairoCanvas::fill(const Path& path, const Gradient& gradient) {
  cairo_pattern_t* pattern =
      cairo_pattern_create_linear(gradient.start.x, gradient.start.y, gradient.end.x, gradient.end.y);
  for (const auto& stop : gradient.stops) {
    cairo_pattern_add_color_stop_rgba(pattern, stop.offset, stop.color.r, stop.color.g, stop.color.b,
                                      stop.color.a);
  }
  replay(path);
  cairo_set_source(cr_, pattern);
  cairo_fill(cr_);
  cairo_pattern_destroy(pattern);
}

void CairoCanvas::stroke(const Path& path, Color c, double width) {
  replay(path);
  cairo_set_source_rgba(cr_, c.r, c.g, c.b, c.a);
  cairo_set_line_width(cr_, width);
  cairo_set_line_join(cr_, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cr_, CAIRO_LINE_CAP_ROUND);
  cairo_stroke(cr_);
}

Size CairoCanvas::measure(std::string_view utf8, const TextStyle& style) {
  constexpr std::size_t kMaxCached = 4096;
  std::string key(utf8);
  key += '\0';
  key += std::to_string(style.font.size) + '/' + std::to_string(static_cast<int>(style.font.weight)) + '/' +
         std::to_string(style.font.monospacedDigits) + '/' + std::to_string(style.wrapWidth);
  if (const auto it = measured_.find(key); it != measured_.end()) return it->second;
  const LayoutPtr layout = makeLayout(pango_, utf8, style, false, 0);
  const Size size = layoutSize(layout.get());
  if (measured_.size() >= kMaxCached) measured_.clear();
  measured_.emplace(std::move(key), size);
  return size;
}

void CairoCanvas::drawText(std::string_view utf8, const TextStyle& style, const Rect& box) {
  const LayoutPtr layout = makeLayout(pango_, utf8, style, true, box.width);
  double x = box.x;
  if (style.wrapWidth <= 0 && style.align != TextAlign::leading) {
    const double slack = std::max(0.0, box.width - layoutSize(layout.get()).width);
    x += style.align == TextAlign::center ? slack / 2 : slack;
  }
  cairo_set_source_rgba(cr_, style.color.r, style.color.g, style.color.b, style.color.a);
  cairo_move_to(cr_, x, box.y);
  pango_cairo_show_layout(cr_, layout.get());
}

void CairoCanvas::drawImage(const Image& image, const Rect& box) {
  if (image.width <= 0 || image.height <= 0 ||
      image.rgba.size() != static_cast<std::size_t>(image.width) * image.height * 4) {
    return;
  }
  cairo_surface_t* bitmap = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, image.width, image.height);
  cairo_surface_flush(bitmap);
  unsigned char* data = cairo_image_surface_get_data(bitmap);
  const int stride = cairo_image_surface_get_stride(bitmap);
  for (int y = 0; y < image.height; ++y) {
    auto* row = reinterpret_cast<std::uint32_t*>(data + y * stride);
    for (int x = 0; x < image.width; ++x) {
      const std::uint8_t* p = &image.rgba[(static_cast<std::size_t>(y) * image.width + x) * 4];
      const std::uint32_t a = p[3];
      row[x] = a << 24 | (p[0] * a / 255) << 16 | (p[1] * a / 255) << 8 | (p[2] * a / 255);
    }
  }
  cairo_surface_mark_dirty(bitmap);
  cairo_save(cr_);
  cairo_translate(cr_, box.x, box.y);
  cairo_scale(cr_, box.width / image.width, box.height / image.height);
  cairo_set_source_surface(cr_, bitmap, 0, 0);
  cairo_paint(cr_);
  cairo_restore(cr_);
  cairo_surface_destroy(bitmap);
}

Color CairoCanvas::pixel(int x, int y) const {
  if (!surface_) return {0, 0, 0, 0};
  cairo_surface_flush(surface_);
  const int width = cairo_image_surface_get_width(surface_);
  const int height = cairo_image_surface_get_height(surface_);
  if (x < 0 || y < 0 || x >= width || y >= height) return {0, 0, 0, 0};
  const unsigned char* data = cairo_image_surface_get_data(surface_);
  const std::uint32_t v =
      *reinterpret_cast<const std::uint32_t*>(data + y * cairo_image_surface_get_stride(surface_) + x * 4);
  const double a = (v >> 24) / 255.0;
  if (a == 0) return {0, 0, 0, 0};
  return {((v >> 16) & 0xff) / 255.0 / a, ((v >> 8) & 0xff) / 255.0 / a, (v & 0xff) / 255.0 / a, a};
}

bool CairoCanvas::writePng(const std::string& path, std::string& error) const {
  if (!surface_) {
    error = "not an offscreen canvas";
    return false;
  }
  cairo_surface_flush(surface_);
  const cairo_status_t status = cairo_surface_write_to_png(surface_, path.c_str());
  if (status != CAIRO_STATUS_SUCCESS) {
    error = cairo_status_to_string(status);
    return false;
  }
  return true;
}

}  // namespace quillmark
