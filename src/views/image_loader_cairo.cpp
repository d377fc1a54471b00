#include <cairo.h>

#include <algorithm>

#include "views/image_loader.h"

namespace quillmark {
namespace {

class CairoPngLoader final : public ImageLoader {
 public:
  std::optional<Image> load(const std::string& reference) override {
    cairo_surface_t* png = cairo_image_surface_create_from_png(reference.c_str());
    std::optional<Image> image;
    if (cairo_surface_status(png) == CAIRO_STATUS_SUCCESS) image = scaledCopy(png);
    cairo_surface_destroy(png);
    return image;
  }

 private:
  // Drawn once into a surface of at most kMaxSide square with a good filter: a 256 px icon
  // shrunk at every paint would cost time and look ragged.
  static std::optional<Image> scaledCopy(cairo_surface_t* png) {
    const int w = cairo_image_surface_get_width(png);
    const int h = cairo_image_surface_get_height(png);
    if (w <= 0 || h <= 0) return std::nullopt;
    const double scale = std::min(1.0, static_cast<double>(kMaxSide) / std::max(w, h));
    const int outW = std::max(1, static_cast<int>(w * scale + 0.5));
    const int outH = std::max(1, static_cast<int>(h * scale + 0.5));
    cairo_surface_t* out = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, outW, outH);
    cairo_t* cr = cairo_create(out);
    cairo_scale(cr, scale, scale);
    cairo_set_source_surface(cr, png, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_flush(out);

    Image image{outW, outH, std::vector<std::uint8_t>(static_cast<std::size_t>(outW) * outH * 4)};
    const unsigned char* data = cairo_image_surface_get_data(out);
    const int stride = cairo_image_surface_get_stride(out);
    for (int y = 0; y < outH; ++y) {
      const auto* row = reinterpret_cast<const std::uint32_t*>(data + y * stride);
      for (int x = 0; x < outW; ++x) {
        // Cairo keeps premultiplied ARGB in native words; Image is straight RGBA bytes.
        const std::uint32_t pixel = row[x];
        const std::uint32_t a = pixel >> 24;
        std::uint8_t* p = &image.rgba[(static_cast<std::size_t>(y) * outW + x) * 4];
        const auto unpremultiply = [a](std::uint32_t c) {
          return static_cast<std::uint8_t>(a == 0 ? 0 : std::min<std::uint32_t>(255, (c * 255 + a / 2) / a));
        };
        p[0] = unpremultiply((pixel >> 16) & 0xff);
        p[1] = unpremultiply((pixel >> 8) & 0xff);
        p[2] = unpremultiply(pixel & 0xff);
        p[3] = static_cast<std::uint8_t>(a);
      }
    }
    cairo_surface_destroy(out);
    return image;
  }
};

}  // namespace

std::unique_ptr<ImageLoader> ImageLoader::makePlatform() { return std::make_unique<CairoPngLoader>(); }

}  // namespace quillmark
