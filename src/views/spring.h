#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillmark {

// A damped spring that carries a value towards a target, for expanding and collapsing rows and
// the flip. `response` is the period in seconds of the undamped oscillation, `damping` the
// fraction of critical damping. Advanced by the host's animation frames; value type.
struct Spring {
  double value = 0;
  double target = 0;
  double velocity = 0;
  double response = 0.22;
  double damping = 0.85;

  void advance(double seconds) {
    const double stiffness = std::pow(2 * std::numbers::pi / response, 2);
    const double friction = 2 * damping * std::sqrt(stiffness);
    // Small fixed steps keep the integration stable whatever the frame interval.
    for (double left = seconds; left > 0; left -= 1.0 / 240) {
      const double dt = std::min(left, 1.0 / 240);
      velocity += (stiffness * (target - value) - friction * velocity) * dt;
      value += velocity * dt;
    }
    if (settled()) snap();
  }
  [[nodiscard]] bool settled() const { return std::abs(target - value) < 1e-3 && std::abs(velocity) < 1e-2; }
  void snap() {
    value = target;
    velocity = 0;
  }
};

}  // namespace quillmark
