#pragma once

#include "base/clock.h"
#include "base/published.h"
#include "base/shared_instance.h"
#include "menubar/flip_spring.h"

namespace quillmark {

// How the turning card is drawn at one moment: which face shows, and how wide it looks (the
// cosine of its rotation about the vertical axis through its centre, 1 when facing the viewer,
// 0 when edge-on). A face vanishes exactly when it is edge-on.
struct FlipPose {
  double angle = 0;  // degrees, 0 front ... 180 back
  bool showsBack = false;
  double widthScale = 1;
};

// Whether the panel shows its settings face, and the turn between the faces. Assigning `flipped`
// starts a spring (response 0.55 s, damping fraction 0.85) of the angle towards 0 or 180 degrees;
// reset() puts the card on its front at once, without a turn, so a reopened panel never animates.
// Main thread only.
class PanelFlipState {
 public:
  static constexpr double kResponse = 0.55;
  static constexpr double kDampingFraction = 0.85;

  explicit PanelFlipState(const Clock& clock);
  PanelFlipState(const PanelFlipState&) = delete;
  PanelFlipState& operator=(const PanelFlipState&) = delete;

  static PanelFlipState& shared() { return SharedInstance<PanelFlipState>::get(); }

  Published<bool> flipped{false};

  void reset();
  [[nodiscard]] FlipPose pose() const;
  // True while the card is turning: the host keeps asking for frames until it is false.
  [[nodiscard]] bool isTurning() const;

  static FlipPose poseAt(double angle);

 private:
  const Clock& clock_;
  FlipSpring spring_{kResponse, kDampingFraction};
  bool resetting_ = false;
};

}  // namespace quillmark
