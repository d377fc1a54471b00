#pragma once

namespace quillmark {

// A critically-or-less damped spring that moves a value (the flip angle in degrees) towards a
// target, described as the designers describe it: response is the period in seconds of the
// undamped oscillation, dampingFraction 1 means no overshoot. Time is the caller's monotonic
// seconds, so the same spring can be evaluated on virtual time in tests. A new target keeps the
// current position and velocity, so reversing mid-turn is smooth. Main thread only.
class FlipSpring {
 public:
  FlipSpring(double response, double dampingFraction) : response_(response), damping_(dampingFraction) {}

  // Starts moving towards target from wherever the spring is at time now.
  void retarget(double target, double now);
  // Jumps to value and stays there: no motion, no velocity.
  void snap(double value);

  [[nodiscard]] double valueAt(double now) const;
  [[nodiscard]] double velocityAt(double now) const;
  [[nodiscard]] double target() const { return target_; }
  // True once the spring is within a hundredth of a degree of its target and all but still, after
  // which valueAt() reports the target itself.
  [[nodiscard]] bool settledAt(double now) const;

 private:
  double response_;
  double damping_;
  double target_ = 0;
  double start_ = 0;          // time the current motion began
  double displacement0_ = 0;  // value - target at start_
  double velocity0_ = 0;      // at start_
};

}  // namespace quillmark
