#include "app/desktop/tray_pixmaps.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

#include "app/desktop/app_icon.h"
#include "menubar/status_icon.h"
#include "views/canvas_cairo.h"

namespace quillmark {
namespace {

// The icon is laid out in points of a 22-point tall item, as in a menu bar; each size scales it.
constexpr double kItemHeight = 22;
constexpr double kIconLeft = 0.5;
constexpr double kTextGap = 4;
constexpr double kTextRight = 2;
constexpr double kFontSize = 13;

Color glyphColor(TrayGlyphs glyphs) {
  return glyphs == TrayGlyphs::light ? Color::rgb(0xf2f2f2) : Color::rgb(0x202020);
}

TextStyle textStyle(TrayGlyphs glyphs) {
  TextStyle style;
  style.font = Font{kFontSize, FontWeight::regular, true};
  style.color = glyphColor(glyphs);
  return style;
}

// The status icon at its menu-bar size, its box's left edge at left and vertically centred.
void paintIcon(Canvas& canvas, double left, Color color) {
  const Rect box{left, (kItemHeight - StatusIcon::kHeight) / 2, StatusIcon::kWidth, StatusIcon::kHeight};
  paintStatusIcon(canvas, box, color, StatusIcon::kLineWidth);
}

// Cairo keeps premultiplied pixels in native-endian words; the item wants straight alpha, bytes
// in A R G B order.
// Only the first `width` columns are taken (a reused surface may be wider than the text).
TrayPixmap toPixmap(cairo_surface_t* surface, int width) {
  cairo_surface_flush(surface);
  TrayPixmap pixmap;
  pixmap.width = std::min(width, cairo_image_surface_get_width(surface));
  pixmap.height = cairo_image_surface_get_height(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  const unsigned char* data = cairo_image_surface_get_data(surface);
  pixmap.argb.resize(static_cast<std::size_t>(pixmap.width) * static_cast<std::size_t>(pixmap.height) * 4);
  std::uint8_t* out = pixmap.argb.data();
  for (int y = 0; y < pixmap.height; ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
    for (int x = 0; x < pixmap.width; ++x, out += 4) {
      const std::uint32_t p = row[x];
      const std::uint32_t a = p >> 24;
      out[0] = static_cast<std::uint8_t>(a);
      if (a == 0) {
        out[1] = out[2] = out[3] = 0;
        continue;
      }
      for (int c = 0; c < 3; ++c) {
        const std::uint32_t premultiplied = (p >> (16 - 8 * c)) & 0xffu;
        out[1 + c] =
            static_cast<std::uint8_t>(std::min<std::uint32_t>(255, (premultiplied * 255 + a / 2) / a));
      }
    }
  }
  return pixmap;
}

// Paints through a canvas of widthPoints × kItemHeight at the scale that makes it `size` pixels
// tall.
template <class Paint>
TrayPixmap render(int size, double widthPoints, Paint paint) {
  const double scale = size / kItemHeight;
  const int width = std::max(1, static_cast<int>(std::ceil(widthPoints * scale)));
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, size);
  cairo_t* cr = cairo_create(surface);
  {
    CairoCanvas canvas(cr, scale);
    paint(canvas);
  }
  cairo_destroy(cr);
  TrayPixmap pixmap = toPixmap(surface, width);
  cairo_surface_destroy(surface);
  return pixmap;
}

}  // namespace

// One size of the text image, kept from tick to tick: making a canvas sets up a Pango context and
// font options, which costs more than drawing the text. Wide enough for the text so far.
struct TrayPainter::TextSlot {
  cairo_surface_t* surface = nullptr;
  cairo_t* cr = nullptr;
  std::unique_ptr<CairoCanvas> canvas;

  TextSlot(int width, int height)
      : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)), cr(cairo_create(surface)) {
    canvas = std::make_unique<CairoCanvas>(cr, height / kItemHeight);
  }
  ~TextSlot() {
    canvas.reset();
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }
  TextSlot(const TextSlot&) = delete;
  TextSlot& operator=(const TextSlot&) = delete;
  [[nodiscard]] int width() const { return cairo_image_surface_get_width(surface); }
  void clear() const {
    cairo_save(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cr);
    cairo_restore(cr);
  }
};

TrayPainter::TrayPainter() : measurer_(CairoCanvas::offscreen({1, 1}, 1)) {}
TrayPainter::~TrayPainter() = default;

std::vector<TrayPixmap> TrayPainter::icon(TrayGlyphs glyphs) {
  std::vector<TrayPixmap> pixmaps;
  const double left = (kItemHeight - StatusIcon::kWidth) / 2;
  for (const int size : kSizes) {
    pixmaps.push_back(render(size, kItemHeight, [&](Canvas& c) { paintIcon(c, left, glyphColor(glyphs)); }));
  }
  return pixmaps;
}

std::vector<TrayPixmap> TrayPainter::iconWithText(std::string_view text, TrayGlyphs glyphs) {
  const TextStyle style = textStyle(glyphs);
  const Size textSize = measurer_->measure(text, style);
  const double textLeft = kIconLeft + StatusIcon::kWidth + kTextGap;
  const double width = textLeft + textSize.width + kTextRight;
  const Rect box{textLeft, (kItemHeight - textSize.height) / 2, textSize.width + kTextRight, textSize.height};
  std::vector<TrayPixmap> pixmaps;
  for (std::size_t i = 0; i < std::size(kTextSizes); ++i) {
    const int size = kTextSizes[i];
    const int pixels = std::max(1, static_cast<int>(std::ceil(width * size / kItemHeight)));
    auto& slot = textSlots_[i];
    // Grown with room to spare, so a text that gains a digit does not rebuild it.
    if (!slot || slot->width() < pixels) slot = std::make_unique<TextSlot>(pixels + size * 2, size);
    slot->clear();
    paintIcon(*slot->canvas, kIconLeft, style.color);
    slot->canvas->drawText(text, style, box);
    pixmaps.push_back(toPixmap(slot->surface, pixels));
  }
  return pixmaps;
}

}  // namespace quillmark
