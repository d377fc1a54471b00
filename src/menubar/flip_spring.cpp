#include "menubar/flip_spring.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillmark {
namespace {

constexpr double kSettleDistance = 0.01;
constexpr double kSettleSpeed = 0.1;  // degrees per second

}  // namespace

// The motion of a damped harmonic oscillator of unit mass with natural frequency w0 = 2π/response
// and damping ratio z: x(t) = e^(-z·w0·t)·(x0·cos(wd·t) + ((v0 + z·w0·x0)/wd)·sin(wd·t)), wd the
// damped frequency. A ratio of 1 or more uses the critically damped form (no oscillation).

void FlipSpring::retarget(double target, double now) {
  const double value = valueAt(now);
  const double velocity = velocityAt(now);
  target_ = target;
  start_ = now;
  displacement0_ = value - target;
  velocity0_ = velocity;
}

void FlipSpring::snap(double value) {
  target_ = value;
  displacement0_ = 0;
  velocity0_ = 0;
}

double FlipSpring::valueAt(double now) const {
  if (settledAt(now)) return target_;
  const double t = now - start_;
  const double w0 = 2 * std::numbers::pi / response_;
  const double decay = std::exp(-damping_ * w0 * t);
  if (damping_ >= 1) return target_ + decay * (displacement0_ + (velocity0_ + w0 * displacement0_) * t);
  const double wd = w0 * std::sqrt(1 - damping_ * damping_);
  const double b = (velocity0_ + damping_ * w0 * displacement0_) / wd;
  return target_ + decay * (displacement0_ * std::cos(wd * t) + b * std::sin(wd * t));
}

double FlipSpring::velocityAt(double now) const {
  const double t = now - start_;
  if (displacement0_ == 0 && velocity0_ == 0) return 0;
  const double w0 = 2 * std::numbers::pi / response_;
  const double decay = std::exp(-damping_ * w0 * t);
  if (damping_ >= 1) {
    const double b = velocity0_ + w0 * displacement0_;
    return decay * (b - w0 * (displacement0_ + b * t));
  }
  const double wd = w0 * std::sqrt(1 - damping_ * damping_);
  const double a = displacement0_;
  const double b = (velocity0_ + damping_ * w0 * a) / wd;
  const double c = std::cos(wd * t);
  const double s = std::sin(wd * t);
  return decay * ((b * wd - damping_ * w0 * a) * c - (a * wd + damping_ * w0 * b) * s);
}

bool FlipSpring::settledAt(double now) const {
  if (displacement0_ == 0 && velocity0_ == 0) return true;
  const double t = now - start_;
  const double w0 = 2 * std::numbers::pi / response_;
  // The envelope bounds the distance from the target; below the threshold it stays below.
  const double envelope =
      std::exp(-damping_ * w0 * t) *
      (std::abs(displacement0_) + std::abs(velocity0_ + damping_ * w0 * displacement0_) /
                                      (w0 * std::sqrt(std::max(1 - damping_ * damping_, 1e-6))));
  return envelope < kSettleDistance && std::abs(velocityAt(now)) < kSettleSpeed;
}

}  // namespace quillmark
