#pragma once

#include <functional>
#include <string>

namespace quillmark {

class Canvas;  // the views' drawing surface (views/canvas.h)

// Modifier keys held during an event.
struct KeyModifiers {
  bool shift = false;
  bool control = false;
  bool option = false;
  bool command = false;
};

// A mouse event in the content's coordinates: points from its top-left corner, y growing down.
struct PointerEvent {
  enum class Kind { down, up, moved, dragged, exited };
  Kind kind = Kind::moved;
  double x = 0;
  double y = 0;
  bool secondary = false;  // the right button (or a control-click)
  int clickCount = 0;
  KeyModifiers modifiers;
};

// A scroll by the given distances in points (positive y scrolls the content down, showing what is
// above); `precise` for trackpads, which deliver many small steps.
struct ScrollEvent {
  double x = 0;
  double y = 0;
  double deltaX = 0;
  double deltaY = 0;
  bool precise = false;
};

// A key that edits or moves rather than types; text arrives through TextInput.
enum class EditKey {
  escape,
  enter,
  tab,
  backTab,
  deleteBackward,
  deleteForward,
  left,
  right,
  up,
  down,
  home,
  end,
  selectAll,
  space,  // only while no text field has focus (wantsTextInput is false): it presses the focused control
};

// A rectangle in the content's coordinates (points, top-left origin).
struct ContentRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

// Typed and composed text for the focused text field. `marked` is an unfinished composition (an
// input method's candidate, shown underlined) that a later commit or another marked text replaces.
struct TextInput {
  enum class Kind { commit, marked, unmark };
  Kind kind = Kind::commit;
  std::string text;  // UTF-8
};

// What a platform shell hosts in a window: a fixed-size piece of the views layer that paints
// itself on a canvas and takes plain-value events. The shell owns the window; the content asks
// for a repaint through requestRepaint, which the shell sets before the first paint. Handlers
// return whether they used the event, so the shell can pass an unused one on (an unused Escape
// closes the panel). Main thread only.
class HostedContent {
 public:
  virtual ~HostedContent() = default;

  // In points.
  [[nodiscard]] virtual double width() const = 0;
  [[nodiscard]] virtual double height() const = 0;

  // The clipboard keys: copy or cut the focused field's selection, whose text goes to
  // writeClipboard (set by the shell). A paste arrives as committed text.
  enum class ClipboardCommand { copy, cut };
  virtual bool clipboard(ClipboardCommand command) {
    (void)command;
    return false;
  }
  std::function<void(const std::string&)> writeClipboard;

  virtual void paint(Canvas& canvas) = 0;

  virtual bool pointer(const PointerEvent& event) = 0;
  virtual bool scroll(const ScrollEvent& event) = 0;
  virtual bool editKey(EditKey key, const KeyModifiers& modifiers) = 0;
  virtual bool text(const TextInput& input) = 0;
  // Whether a text field has focus (so the shell routes typing through the input methods), and
  // where its caret is, for placing an input method's candidate window (content coordinates).
  [[nodiscard]] virtual bool wantsTextInput() const = 0;
  [[nodiscard]] virtual ContentRect caretRect() const = 0;
  // True while something in the content moves (the flip, a row opening): the shell keeps asking
  // for frames, repainting on each, until it is false. Content that never moves keeps the default.
  [[nodiscard]] virtual bool animating() const { return false; }

  std::function<void()> requestRepaint;
};

}  // namespace quillmark
