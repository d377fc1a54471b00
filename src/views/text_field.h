#pragma once

#include <functional>
#include <string>

#include "views/controls.h"

namespace quillmark {

// A one-line text field (the process search). Holds UTF-8 text with a cursor and a selection
// anchor at character boundaries, plus the provisional text of an input method while composing.
// Typing, deletion, arrows, selection, select-all, cut/copy/paste; Escape empties it. `changed`
// hears every committed change of the text; `copied` receives text for the clipboard.
class TextField : public Control {
 public:
  TextField(const Theme& theme, std::string placeholder, std::function<void(const std::string&)> changed);

  [[nodiscard]] bool focusable() const override { return true; }
  [[nodiscard]] bool focusOnClick() const override { return true; }
  bool onKey(const ViewKeyEvent& event) override;
  bool onText(const ViewTextEvent& event) override;
  void onClick(Point p) override;
  void paint(Canvas& canvas) override;
  void layout(TextMeasurer& measurer) override;

  void setText(std::string text);
  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] std::size_t cursor() const { return cursor_; }
  [[nodiscard]] std::string selectedText() const;
  [[nodiscard]] const std::string& composing() const { return composing_; }
  std::function<void(const std::string&)> copied;

  // Cursor, selection and provisional text, carried over when the panel rebuilds its views.
  struct Editing {
    std::size_t cursor = 0;
    std::size_t anchor = 0;
    std::string composing;
  };
  [[nodiscard]] Editing editing() const { return {cursor_, anchor_, composing_}; }
  // Where the caret is drawn, in this view's coordinates (for an input method's candidates).
  [[nodiscard]] Rect caretRect() const;
  void restore(const Editing& editing);

 private:
  void replaceSelection(std::string_view with);
  void moveTo(std::size_t position, bool extend);
  [[nodiscard]] std::size_t previous(std::size_t at) const;
  [[nodiscard]] std::size_t next(std::size_t at) const;
  [[nodiscard]] TextStyle textStyle() const;

  std::string placeholder_;
  std::function<void(const std::string&)> changed_;
  std::string text_;
  std::size_t cursor_ = 0;
  std::size_t anchor_ = 0;
  std::string composing_;
  TextMeasurer* measurer_ = nullptr;  // the last layout's, for placing the cursor on a click
};

}  // namespace quillmark
