#pragma once

#include <functional>

#include "menubar/hosted_content.h"
#include "menubar/panel_anchor.h"
#include "menubar/panel_flip_state.h"
#include "views/panel_content.h"
#include "views/panel_services.h"

namespace quillmark {

// The panel for one opening, as a platform shell hosts it: the adapter over the services, the
// view tree fed with its models, and the ties to the shell's shared state: the chrome (PanelAnchor,
// whose arrow the controller moves after building the panel, and PanelFlipState, the turn between
// the faces, on the shell's clock), and while a confirmation is up the panel holds itself open when it loses
// key status (`setDialogHold`, PanelWindowController::dialogHold), released when the confirmation ends or the
// panel goes. Built on every opening and destroyed on every close, so every subscription ends with it. Main
// thread only; everything it is given must outlive it.
class HostedPanel final : public HostedContent {
 public:
  struct Shell {
    PanelChrome chrome;
    std::function<void(bool hold)> setDialogHold;
  };

  HostedPanel(const PanelServices::Services& services, TextMeasurer& measurer, Shell shell);
  ~HostedPanel() override;
  HostedPanel(const HostedPanel&) = delete;
  HostedPanel& operator=(const HostedPanel&) = delete;

  [[nodiscard]] PanelContent& content() { return content_; }

  [[nodiscard]] double width() const override { return content_.width(); }
  [[nodiscard]] double height() const override { return content_.height(); }
  void paint(Canvas& canvas) override { content_.paint(canvas); }
  bool pointer(const PointerEvent& event) override;
  bool scroll(const ScrollEvent& event) override;
  bool editKey(EditKey key, const KeyModifiers& modifiers) override;
  bool text(const TextInput& input) override;
  [[nodiscard]] bool wantsTextInput() const override { return content_.wantsTextInput(); }
  [[nodiscard]] ContentRect caretRect() const override { return content_.caretRect(); }
  [[nodiscard]] bool animating() const override { return content_.animating(); }
  bool clipboard(ClipboardCommand command) override;

 private:
  // Confirmations come and go only through input; each event ends by updating the hold.
  bool updateHold(bool used);

  PanelServices services_;
  PanelContent content_;
  Shell shell_;
  bool holding_ = false;
};

}  // namespace quillmark
