// Renders the icons the package installs, from the same drawing code as the tray item:
//   <out>/hicolor/<n>x<n>/apps/quillmark.png for each size,
//   <out>/hicolor/scalable/apps/quillmark.svg, and
//   <out>/hicolor/symbolic/apps/quillmark-symbolic.svg (the bare glyph, for desktops that tint).
#include <cairo-svg.h>
#include <cairo.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

#include "app/desktop/app_icon.h"
#include "menubar/status_icon.h"
#include "views/canvas_cairo.h"

namespace quillmark {
namespace {

bool finish(cairo_surface_t* surface, const std::string& png) {
  cairo_surface_flush(surface);
  const bool ok = cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS &&
                  (png.empty() || cairo_surface_write_to_png(surface, png.c_str()) == CAIRO_STATUS_SUCCESS);
  cairo_surface_destroy(surface);
  if (!ok) std::fprintf(stderr, "render-icons: could not write %s\n", png.empty() ? "an SVG" : png.c_str());
  return ok;
}

// Pixels rather than cairo's default points, as icon themes size SVGs.
cairo_surface_t* svg(const std::filesystem::path& path, double size) {
  cairo_surface_t* surface = cairo_svg_surface_create(path.c_str(), size, size);
  cairo_svg_surface_set_document_unit(surface, CAIRO_SVG_UNIT_PX);
  return surface;
}

bool draw(cairo_surface_t* surface, double scale, const std::function<void(Canvas&)>& paint,
          const std::string& png) {
  cairo_t* cr = cairo_create(surface);
  {
    CairoCanvas canvas(cr, scale);
    paint(canvas);
  }
  cairo_destroy(cr);
  return finish(surface, png);
}

int renderIcons(const std::filesystem::path& out) {
  namespace fs = std::filesystem;
  std::error_code error;
  bool ok = true;
  for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
    const fs::path dir = out / "hicolor" / (std::to_string(size) + "x" + std::to_string(size)) / "apps";
    fs::create_directories(dir, error);
    ok &= draw(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size), size / kAppIconSize, paintAppIcon,
               (dir / "quillmark.png").string());
  }
  const fs::path scalable = out / "hicolor" / "scalable" / "apps";
  fs::create_directories(scalable, error);
  ok &= draw(svg(scalable / "quillmark.svg", kAppIconSize), 1, paintAppIcon, "");
  // Symbolic icons are 16 × 16 and drawn in grey; desktops recolour them.
  const fs::path symbolic = out / "hicolor" / "symbolic" / "apps";
  fs::create_directories(symbolic, error);
  ok &= draw(
      svg(symbolic / "quillmark-symbolic.svg", 16), 1,
      [](Canvas& c) {
        const double k = 16 / StatusIcon::kWidth;
        paintStatusIcon(c, Rect{0, (16 - StatusIcon::kHeight * k) / 2, 16, StatusIcon::kHeight * k},
                        Color::rgb(0xbebebe), StatusIcon::kLineWidth * k);
      },
      "");
  return ok ? 0 : 1;
}

}  // namespace
}  // namespace quillmark

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUTPUT-DIRECTORY\n", argv[0]);
    return 2;
  }
  return quillmark::renderIcons(argv[1]);
}
