#include "menubar/first_run_tip_window.h"

#include <memory>

#include "base/log.h"

namespace quillmark {

void FirstRunTipWindow::showIfNeeded(const AnchorGeometry& anchor) {
  if (!settings_.isFirstRun()) return;
  if (!host_.build()) {
    Log::debug("First launch: the guidance tip could not be built; it waits for the next launch");
    return;
  }
  settings_.markLaunched();
  Log::debug("First launch: showing guidance tip");

  // Without the item's place the card still appears, at the screen's origin, so the one chance to
  // explain the program is not lost.
  ScreenPoint origin;
  if (anchor.item) {
    const CardPlacement placement = placeNear(*anchor.item, anchor.visibleFrame, kWidth, kHeight);
    origin = placement.origin;
    anchor_.arrowX.set(placement.arrowX);
    anchor_.arrowBelow.set(placement.arrowBelow);
  }
  host_.show(origin);
  shown_ = true;

  std::weak_ptr<FirstRunTipWindow*> weak = lifetime_;
  loop_.postAfter(kShowSeconds, [weak] {
    if (auto self = weak.lock()) (*self)->dismiss();
  });
}

void FirstRunTipWindow::dismiss() {
  if (!shown_) return;
  shown_ = false;
  host_.dismiss();
}

}  // namespace quillmark
