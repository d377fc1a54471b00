#include "views/label.h"

#include <algorithm>

namespace quillmark {
namespace {

constexpr double kSmallestShrink = 0.75;
constexpr double kSlack = 0.5;  // points of rounding a measured text may exceed its box by

}  // namespace

TextStyle Label::styleFor(double width) const {
  TextStyle s = style;
  if (overflow == Overflow::wrap) s.wrapWidth = std::max(1.0, width);
  if (overflow == Overflow::ellipsize) s.ellipsize = true;
  return s;
}

double Label::heightFor(TextMeasurer& measurer, double width) {
  if (fixedHeight > 0) return fixedHeight;
  return measurer.measure(text.empty() ? std::string_view(" ") : std::string_view(text), styleFor(width))
      .height;
}

void Label::layout(TextMeasurer& measurer) {
  drawn_ = styleFor(frame.width);
  drawnSize_ = measurer.measure(text, drawn_);
  if (overflow == Overflow::shrink) {
    const double smallest = style.font.size * kSmallestShrink;
    while (drawnSize_.width > frame.width + kSlack && drawn_.font.size > smallest) {
      drawn_.font.size = std::max(smallest, drawn_.font.size * std::max(0.9, frame.width / drawnSize_.width));
      drawnSize_ = measurer.measure(text, drawn_);
    }
  }
  const double shownWidth =
      overflow == Overflow::ellipsize ? std::min(drawnSize_.width, frame.width) : drawnSize_.width;
  fits_ = shownWidth <= frame.width + kSlack && drawnSize_.height <= frame.height + kSlack;
}

void Label::paint(Canvas& canvas) {
  if (text.empty()) return;
  const double top = std::max(0.0, (frame.height - drawnSize_.height) / 2);
  canvas.drawText(text, drawn_, {0, top, frame.width, drawnSize_.height});
}

}  // namespace quillmark
