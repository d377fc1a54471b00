#pragma once

#include <optional>

#include "base/published.h"
#include "base/shared_instance.h"
#include "menubar/screen_geometry.h"

namespace quillmark {

// Where the arrow on the top edge of the panel (and of the first-run card) points: its tip's x in
// points from the card's left edge. Both cards share one anchor, so whichever was placed last
// decides the arrow. The constants describe the card's outline. Main thread only.
class PanelAnchor {
 public:
  static constexpr double arrowHeight = 8;
  static constexpr double arrowWidth = 20;
  static constexpr double corner = 14;
  // Cards keep this far from the edges of the screen's visible frame.
  static constexpr double screenMargin = 8;

  static PanelAnchor& shared() { return SharedInstance<PanelAnchor>::get(); }

  Published<double> arrowX{200};
  // True when the card stands above the item with its arrow on the bottom edge (an item at the
  // bottom of the screen, as in a bottom panel on Linux); a menu-bar item never sets it.
  Published<bool> arrowBelow{false};

  // The arrow position actually drawn on a card of this width: arrowX kept at least corner + half
  // the arrow's base (24 points) from either edge. The left bound wins on a card too narrow for both.
  [[nodiscard]] double clamped(double width) const { return clamp(arrowX.value(), width); }
  // The same rule for any arrow position (a card drawn without the shared anchor, a rendering).
  [[nodiscard]] static double clamp(double arrowX, double width);
};

// The result of hanging a card under the status item: the card's lower-left corner on screen and
// the arrow position that points back at the item.
struct CardPlacement {
  ScreenPoint origin;
  double arrowX = 0;
  bool arrowBelow = false;
};

// Centres a card of the given size under the item, its top edge (the arrow's tip) touching the
// item's bottom, then pushes it inside the visible frame with screenMargin on each side; the right
// bound wins when both cannot hold. Without a visible frame nothing is clamped.
[[nodiscard]] CardPlacement placeUnder(const ScreenRect& item, const std::optional<ScreenRect>& visibleFrame,
                                       double width, double height);

// placeUnder, except that a card that would reach below the visible frame under an item in the
// lower half of it stands on top of the item instead, its bottom edge (the arrow's tip) touching
// the item's top: the card faces the item wherever the tray is.
[[nodiscard]] CardPlacement placeNear(const ScreenRect& item, const std::optional<ScreenRect>& visibleFrame,
                                      double width, double height);

}  // namespace quillmark
