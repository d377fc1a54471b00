#include "menubar/screen_geometry.h"

#include <cstdio>

namespace quillmark {

std::string describe(const ScreenRect& rect) {
  char text[128];
  std::snprintf(text, sizeof text, "(%.1f, %.1f, %.1f, %.1f)", rect.x, rect.y, rect.width, rect.height);
  return text;
}

}  // namespace quillmark
