#pragma once

#include <string>

#include "views/geometry.h"

namespace quillmark {

// Input to the view tree as plain values; locations are in points from the top-left of the
// receiving view. PanelContent makes them from the shell's events (menubar/hosted_content.h).

struct ViewPointerEvent {
  enum class Kind { down, up, move, leave };
  Kind kind = Kind::move;
  Point location;
};

// dy > 0 scrolls the content up (reveals what is further down), in points.
struct ViewScrollEvent {
  Point location;
  double dy = 0;
};

enum class Key {
  left,
  right,
  home,
  end,
  up,
  down,
  backspace,
  deleteForward,
  enter,
  escape,
  tab,
  space,  // to a control; a text field receives it as typed text
  selectAll,
  copy,
  cut,
  paste,
};

struct ViewKeyEvent {
  ViewKeyEvent(Key pressed = Key::enter, bool withShift = false, std::string clipboard = {})
      : key(pressed), shift(withShift), pasteText(std::move(clipboard)) {}
  Key key;
  bool shift;
  std::string pasteText;  // the clipboard's text, for Key::paste
};

// Text typed or composed by the platform's input method. While `composing`, the text is the
// provisional (marked) text that replaces the previous provisional text; a final event with
// composing false commits it.
struct ViewTextEvent {
  std::string text;
  bool composing = false;
};

}  // namespace quillmark
