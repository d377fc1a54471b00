#pragma once

#include <array>
#include <span>

namespace quillmark {

// The status item's drawn icon: a pulse line crossed by a needle, stroked (never filled) in one
// colour and tinted by the menu bar (a template image on macOS). Coordinates are points in a
// 21 × 18 box with y growing upwards.
namespace StatusIcon {

struct Point {
  double x;
  double y;
};

inline constexpr double kWidth = 21;
inline constexpr double kHeight = 18;
inline constexpr double kLineWidth = 1.75;  // round caps and joins

inline constexpr std::array<Point, 7> kPulse = {
    {{1.5, 8.5}, {5.6, 8.5}, {7.0, 10.8}, {8.5, 5.2}, {10.2, 15.0}, {11.2, 9.0}, {18.8, 14.1}}};
inline constexpr std::array<Point, 2> kStem = {{{11.2, 2.4}, {11.2, 15.0}}};
inline constexpr std::array<Point, 2> kNeedle = {{{13.3, 7.4}, {18.4, 2.8}}};

// The three open paths, in drawing order.
inline constexpr std::array<std::span<const Point>, 3> kPaths = {
    std::span<const Point>(kPulse), std::span<const Point>(kStem), std::span<const Point>(kNeedle)};

}  // namespace StatusIcon
}  // namespace quillmark
