#pragma once

#include <optional>
#include <vector>

#include "views/view.h"

namespace quillmark {

// A horizontal bar: a rounded track with a fill from the leading edge. The fraction is clamped to
// 0-1; absent draws the track alone (an unknown value is not an empty one).
class Bar : public View {
 public:
  Bar(std::optional<double> value, Color fillColor, Color trackColor, double height = 6)
      : fraction(value), fill(fillColor), track(trackColor) {
    fixedHeight = height;
  }
  void paint(Canvas& canvas) override;
  // The width the fill covers for a track `width` points wide.
  [[nodiscard]] static double fillWidth(std::optional<double> fraction, double width);

  std::optional<double> fraction;
  Color fill;
  Color track;
};

// A line chart of evenly spaced values, oldest first, scaled to [0, maxValue] (the largest value
// when maxValue is not positive). Absent values are gaps: the line stops before one and starts
// again after it, and the area under the line is filled piece by piece.
class Chart : public View {
 public:
  Chart(std::vector<std::optional<double>> series, double top, Color lineColor, bool fill, double height)
      : values(std::move(series)), maxValue(top), line(lineColor), filled(fill) {
    fixedHeight = height;
  }
  static std::vector<std::optional<double>> dense(const std::vector<double>& values);
  void paint(Canvas& canvas) override;

  std::vector<std::optional<double>> values;
  double maxValue;
  Color line;
  bool filled;
  Color background{0, 0, 0, 0};
  // A second series drawn over the first (upload over download), on the same scale.
  std::vector<std::optional<double>> overlay;
  Color overlayLine;

 private:
  void drawSeries(Canvas& canvas, const std::vector<std::optional<double>>& series, Color color,
                  double top) const;
};

// Thin vertical bars side by side, one per value in percent (the per-core loads).
class ColumnBars : public View {
 public:
  ColumnBars(std::vector<double> percents, Color fill, Color track, double height = 30)
      : percents_(std::move(percents)), fill_(fill), track_(track) {
    fixedHeight = height;
  }
  void paint(Canvas& canvas) override;

 private:
  std::vector<double> percents_;
  Color fill_;
  Color track_;
};

}  // namespace quillmark
