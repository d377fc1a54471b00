#pragma once

#include <functional>
#include <string>
#include <vector>

#include "views/controls.h"

namespace quillmark {

// A modal confirmation over the whole face: a dimmed backdrop that swallows clicks, a card with
// a title, a wrapped message and one full-width button per choice (so long translations never
// need to share a row). Exactly one choice runs, then `dismiss`. The first choice is the default:
// Enter runs it; Escape runs the cancel choice; Tab moves between the buttons, Space presses one.
class ConfirmDialog : public Control {
 public:
  struct Choice {
    std::string title;
    Button::Role role = Button::Role::normal;
    std::function<void()> action;  // empty for cancel
    bool isCancel = false;
  };
  ConfirmDialog(const Theme& theme, std::string title, std::string message, std::vector<Choice> choices,
                std::function<void()> dismiss);
  void layout(TextMeasurer& measurer) override;
  void paint(Canvas& canvas) override;
  [[nodiscard]] bool focusable() const override { return true; }
  bool onKey(const ViewKeyEvent& event) override;

 private:
  void choose(std::size_t index);
  Label* title_;
  Label* message_;
  std::vector<Button*> buttons_;
  std::vector<Choice> choices_;
  std::function<void()> dismiss_;
  Rect card_;
};

}  // namespace quillmark
