#include "menubar/panel_window_controller.h"

#include "base/log.h"

namespace quillmark {

void PanelWindowController::toggle(const AnchorGeometry& anchor) {
  if (isShown()) {
    close();
    return;
  }
  if (env_.clock.monotonicNow() - lastCloseAt_ <= kReopenDebounceSeconds) return;
  show(anchor);
}

void PanelWindowController::show(const AnchorGeometry& anchor) {
  if (!hasPanel_) {
    env_.host.build();
    hasPanel_ = true;
  }
  // Without the item's place the panel opens where it last was, its arrow unchanged.
  if (anchor.item) {
    const CardPlacement placement = placeNear(*anchor.item, anchor.visibleFrame, kWidth, kHeight);
    env_.host.moveTo(placement.origin);
    env_.anchor.arrowX.set(placement.arrowX);
    env_.anchor.arrowBelow.set(placement.arrowBelow);
  }
  env_.host.makeKeyAndOrderFront();
  if (env_.setPublishingPaused) env_.setPublishingPaused(false);
  Log::debug("Panel opened");
}

void PanelWindowController::close() {
  if (hasPanel_) {
    Log::debug("Panel closed");
    env_.host.destroy();
  }
  hasPanel_ = false;
  lastCloseAt_ = env_.clock.monotonicNow();
  if (env_.setPublishingPaused) env_.setPublishingPaused(true);
  env_.flip.reset();
}

void PanelWindowController::windowDidResignKey() {
  if (!dialogHold) close();
}

}  // namespace quillmark
