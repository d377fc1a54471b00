#pragma once

#include "menubar/hosted_content.h"
#include "views/panel_root.h"

namespace quillmark {

// The panel as the shells host it: a HostedContent over a PanelRoot, turning the shell's events
// into the view tree's (scroll directions, key names, compositions) and passing the repaint
// request through. Main thread only; actions and measurer must outlive it.
class PanelContent final : public HostedContent {
 public:
  PanelContent(PanelActions& actions, TextMeasurer& measurer, PanelChrome chrome);

  [[nodiscard]] PanelRoot& root() { return root_; }

  [[nodiscard]] double width() const override { return root_.size().width; }
  [[nodiscard]] double height() const override { return root_.size().height; }
  void paint(Canvas& canvas) override { root_.paint(canvas); }
  bool pointer(const PointerEvent& event) override;
  bool scroll(const ScrollEvent& event) override;
  bool editKey(EditKey key, const KeyModifiers& modifiers) override;
  bool text(const TextInput& input) override;
  [[nodiscard]] bool wantsTextInput() const override;
  [[nodiscard]] ContentRect caretRect() const override;
  [[nodiscard]] bool animating() const override { return root_.animating(); }

 private:
  PanelRoot root_;
};

}  // namespace quillmark
