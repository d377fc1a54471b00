#pragma once

#include <functional>
#include <vector>

#include "menubar/hosted_content.h"
#include "menubar/panel_anchor.h"
#include "settings/settings_types.h"
#include "views/label.h"

namespace quillmark {

struct Theme;

// The first-run card as both shells host it: on the skin's arrowed background, a title and three
// lines that tell how to use the status item (left click opens the panel, right click the menu,
// the gear turns to the settings), and a button that calls onDismiss. The arrow follows the shared
// anchor, so opening the panel while the card is up moves both arrows together. The card never
// takes the keyboard; if a key reaches it anyway, Enter and Escape dismiss it like the button.
// Laid out with the first canvas it paints on. Main thread only; anchor must outlive it.
class FirstRunTipContent final : public HostedContent {
 public:
  FirstRunTipContent(PanelAnchor& anchor, PanelSkin skin, std::function<void()> onDismiss);
  ~FirstRunTipContent() override;
  FirstRunTipContent(const FirstRunTipContent&) = delete;
  FirstRunTipContent& operator=(const FirstRunTipContent&) = delete;

  [[nodiscard]] double width() const override;
  [[nodiscard]] double height() const override;
  void paint(Canvas& canvas) override;
  bool pointer(const PointerEvent& event) override;
  bool scroll(const ScrollEvent&) override { return false; }
  bool editKey(EditKey key, const KeyModifiers& modifiers) override;
  bool text(const TextInput&) override { return false; }
  [[nodiscard]] bool wantsTextInput() const override { return false; }
  [[nodiscard]] ContentRect caretRect() const override { return {}; }

  // The laid-out views (ids "title", "left", "right", "gear", "dismiss"), for tests.
  [[nodiscard]] View& tree(TextMeasurer& measurer);

 private:
  void build();
  [[nodiscard]] double bodyTop() const;
  void repaint() const;
  void setHovered(View* view);

  PanelAnchor& anchor_;
  const Theme& theme_;
  std::function<void()> onDismiss_;
  Published<double>::Token anchorToken_;
  Published<bool>::Token arrowBelowToken_;
  View root_;
  View* body_ = nullptr;
  std::vector<Label*> lines_;
  bool laidOut_ = false;
  View* hovered_ = nullptr;
  View* pressed_ = nullptr;
};

}  // namespace quillmark
