#include "views/panel_content.h"

#include "views/text_field.h"

namespace quillmark {

PanelContent::PanelContent(PanelActions& actions, TextMeasurer& measurer, PanelChrome chrome)
    : root_(actions, measurer, chrome) {
  root_.needsRedraw = [this] {
    if (requestRepaint) requestRepaint();
  };
}

bool PanelContent::pointer(const PointerEvent& event) {
  if (event.secondary) return false;  // the panel has no context menus
  using Kind = ViewPointerEvent::Kind;
  Kind kind = Kind::move;
  switch (event.kind) {
    case PointerEvent::Kind::down:
      kind = Kind::down;
      break;
    case PointerEvent::Kind::up:
      kind = Kind::up;
      break;
    case PointerEvent::Kind::moved:
    case PointerEvent::Kind::dragged:
      kind = Kind::move;
      break;
    case PointerEvent::Kind::exited:
      kind = Kind::leave;
      break;
  }
  root_.pointer({kind, {event.x, event.y}});
  return true;
}

bool PanelContent::scroll(const ScrollEvent& event) {
  // The shell's positive delta shows what is above; the views' shows what is below.
  root_.scroll({{event.x, event.y}, -event.deltaY});
  return true;
}

bool PanelContent::editKey(EditKey key, const KeyModifiers& modifiers) {
  Key mapped = Key::enter;
  switch (key) {
    case EditKey::escape:
      mapped = Key::escape;
      break;
    case EditKey::enter:
      mapped = Key::enter;
      break;
    case EditKey::tab:
      mapped = Key::tab;
      break;
    case EditKey::backTab:
      return root_.key({Key::tab, true});
    case EditKey::deleteBackward:
      mapped = Key::backspace;
      break;
    case EditKey::deleteForward:
      mapped = Key::deleteForward;
      break;
    case EditKey::left:
      mapped = Key::left;
      break;
    case EditKey::right:
      mapped = Key::right;
      break;
    case EditKey::up:
      mapped = Key::up;
      break;
    case EditKey::down:
      mapped = Key::down;
      break;
    case EditKey::home:
      mapped = Key::home;
      break;
    case EditKey::end:
      mapped = Key::end;
      break;
    case EditKey::selectAll:
      mapped = Key::selectAll;
      break;
    case EditKey::space:
      mapped = Key::space;
      break;
  }
  return root_.key({mapped, modifiers.shift});
}

bool PanelContent::text(const TextInput& input) {
  switch (input.kind) {
    case TextInput::Kind::commit:
      root_.text({input.text, false});
      break;
    case TextInput::Kind::marked:
      root_.text({input.text, true});
      break;
    case TextInput::Kind::unmark:
      root_.text({"", true});
      break;
  }
  return wantsTextInput();
}

bool PanelContent::wantsTextInput() const {
  return dynamic_cast<const TextField*>(root_.focusedView()) != nullptr;
}

ContentRect PanelContent::caretRect() const {
  const auto* field = dynamic_cast<const TextField*>(root_.focusedView());
  if (!field) return {};
  const Point origin = field->originIn();
  const Rect caret = field->caretRect();
  return {origin.x + caret.x, origin.y + caret.y, caret.width, caret.height};
}

}  // namespace quillmark
