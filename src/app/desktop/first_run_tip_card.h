#pragma once

#include <functional>

#include "menubar/hosted_content.h"
#include "menubar/panel_anchor.h"
#include "settings/l10n.h"

namespace quillmark {

// The first-run card's content on Linux: the panel's arrowed card (its arrow on the shared anchor,
// above or below), a title, the three lines on how to use the tray item, and a button that calls
// onDismiss, as do Enter and Escape. Main thread only; anchor and l10n must outlive it.
class FirstRunTipCard final : public HostedContent {
 public:
  FirstRunTipCard(PanelAnchor& anchor, const L10n& l10n, std::function<void()> onDismiss);
  ~FirstRunTipCard() override;
  FirstRunTipCard(const FirstRunTipCard&) = delete;
  FirstRunTipCard& operator=(const FirstRunTipCard&) = delete;

  [[nodiscard]] double width() const override;
  [[nodiscard]] double height() const override;
  void paint(Canvas& canvas) override;
  bool pointer(const PointerEvent& event) override;
  bool scroll(const ScrollEvent&) override { return false; }
  bool editKey(EditKey key, const KeyModifiers& modifiers) override;
  bool text(const TextInput&) override { return false; }
  [[nodiscard]] bool wantsTextInput() const override { return false; }
  [[nodiscard]] ContentRect caretRect() const override { return {}; }

  // The button, in content coordinates (for tests and hit testing).
  [[nodiscard]] ContentRect button() const;

 private:
  void repaint() const;

  PanelAnchor& anchor_;
  const L10n& l10n_;
  std::function<void()> onDismiss_;
  Published<double>::Token arrowToken_ = 0;
  Published<bool>::Token belowToken_ = 0;
  bool hovered_ = false;
  bool pressed_ = false;
};

}  // namespace quillmark
