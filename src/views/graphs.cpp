#include "views/graphs.h"

#include <algorithm>

namespace quillmark {

double Bar::fillWidth(std::optional<double> fraction, double width) {
  return fraction ? std::clamp(*fraction, 0.0, 1.0) * width : 0;
}

void Bar::paint(Canvas& canvas) {
  const double radius = frame.height / 2;
  canvas.fill(Path().addRoundedRect({0, 0, frame.width, frame.height}, radius), track);
  const double w = fillWidth(fraction, frame.width);
  if (w > 0) canvas.fill(Path().addRoundedRect({0, 0, w, frame.height}, std::min(radius, w / 2)), fill);
}

void ColumnBars::paint(Canvas& canvas) {
  if (percents_.empty()) return;
  const double gap = 3;
  const double w =
      (frame.width - gap * static_cast<double>(percents_.size() - 1)) / static_cast<double>(percents_.size());
  for (std::size_t i = 0; i < percents_.size(); ++i) {
    const Rect slot{static_cast<double>(i) * (w + gap), 0, w, frame.height};
    canvas.fill(Path().addRoundedRect(slot, 2), track_);
    const double h = std::clamp(percents_[i] / 100, 0.0, 1.0) * frame.height;
    if (h > 0)
      canvas.fill(Path().addRoundedRect({slot.x, slot.maxY() - h, w, h}, std::min(2.0, h / 2)), fill_);
  }
}

std::vector<std::optional<double>> Chart::dense(const std::vector<double>& values) {
  return {values.begin(), values.end()};
}

void Chart::drawSeries(Canvas& canvas, const std::vector<std::optional<double>>& series, Color color,
                       double top) const {
  if (series.size() < 2 || top <= 0) return;
  const double step = frame.width / static_cast<double>(series.size() - 1);
  const auto yOf = [&](double v) {
    return frame.height - std::clamp(v / top, 0.0, 1.0) * (frame.height - 2) - 1;
  };
  std::size_t i = 0;
  while (i < series.size()) {
    while (i < series.size() && !series[i]) ++i;
    const std::size_t first = i;
    while (i < series.size() && series[i]) ++i;
    if (i == first) continue;
    Path linePath;
    Path area;
    area.moveTo({first * step, frame.height});
    for (std::size_t k = first; k < i; ++k) {
      const Point p{k * step, yOf(*series[k])};
      if (k == first)
        linePath.moveTo(p);
      else
        linePath.lineTo(p);
      area.lineTo(p);
    }
    if (i - first == 1) linePath.lineTo({first * step + 0.01, yOf(*series[first])});
    area.lineTo({(i - 1) * step, frame.height}).close();
    if (filled) {
      canvas.fill(
          area,
          Gradient{{0, 0}, {0, frame.height}, {{0, color.withAlpha(0.35)}, {1, color.withAlpha(0.02)}}});
    }
    canvas.stroke(linePath, color, 1.5);
  }
}

void Chart::paint(Canvas& canvas) {
  if (background.a > 0) canvas.fill(Path().addRoundedRect({0, 0, frame.width, frame.height}, 4), background);
  double top = maxValue;
  if (top <= 0) {
    for (const auto& series : {values, overlay}) {
      for (const auto& v : series) {
        if (v) top = std::max(top, *v);
      }
    }
  }
  if (top <= 0) top = 1;  // all zero: a flat line along the bottom, not nothing
  drawSeries(canvas, values, line, top);
  drawSeries(canvas, overlay, overlayLine, top);
}

}  // namespace quillmark
