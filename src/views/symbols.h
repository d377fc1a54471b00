#pragma once

#include "views/canvas.h"

namespace quillmark {

// Small line drawings standing in for the platform's named symbol images, so both platforms show
// the same pictures. Each is drawn centred in box and scaled to its smaller side (designed on a
// 16-point square).
enum class Symbol {
  gauge,        // a dial with dots and a needle
  cursorClick,  // a pointer with click rays
  menuCursor,   // a menu with a pointer over it
  gear,
};

void drawSymbol(Canvas& canvas, Symbol symbol, const Rect& box, Color ink, Color accent);

}  // namespace quillmark
