#include "menubar/panel_flip_state.h"

#include <cmath>
#include <numbers>

namespace quillmark {

PanelFlipState::PanelFlipState(const Clock& clock) : clock_(clock) {
  // The state lives as long as its own published value, so the subscription is never removed.
  (void)flipped.subscribe([this](const bool& value) {
    if (!resetting_) spring_.retarget(value ? 180 : 0, clock_.monotonicNow());
  });
}

void PanelFlipState::reset() {
  resetting_ = true;
  flipped.set(false);
  resetting_ = false;
  spring_.snap(0);
}

FlipPose PanelFlipState::pose() const { return poseAt(spring_.valueAt(clock_.monotonicNow())); }

bool PanelFlipState::isTurning() const { return !spring_.settledAt(clock_.monotonicNow()); }

FlipPose PanelFlipState::poseAt(double angle) {
  const bool back = angle > 90;
  // The back face is turned by angle - 180, whose cosine has the same magnitude.
  return FlipPose{angle, back, std::abs(std::cos(angle * std::numbers::pi / 180))};
}

}  // namespace quillmark
