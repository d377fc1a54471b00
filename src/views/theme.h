#pragma once

#include "views/canvas.h"

namespace quillmark {

// The colours and type sizes of one skin. Plain constants; any thread.
struct Theme {
  Color backgroundTop;
  Color backgroundBottom;
  Color border;
  Color card;
  Color cardBorder;
  Color text;
  Color secondaryText;
  Color track;
  Color accent;
  Color cpu;
  Color memory;
  Color network;
  Color upload;
  Color gpu;
  Color temperature;
  Color power;
  Color warning;
  Color destructive;
  Color controlFill;
  Color controlHover;
  Color controlPressed;
  double corner = 10;     // of cards and controls
  double titleSize = 15;  // the face's heading
  double bodySize = 12;
  double captionSize = 10.5;
  double figureSize = 22;  // the big numbers

  [[nodiscard]] static const Theme& glass();
  [[nodiscard]] static const Theme& vitals();
};

}  // namespace quillmark
