#include "views/scroll_view.h"

#include <algorithm>

namespace quillmark {

ScrollView::ScrollView(std::unique_ptr<View> content) : content_(&add(std::move(content))) {
  clipsChildren = true;
}

void ScrollView::layout(TextMeasurer& measurer) {
  content_->frame = {0, 0, frame.width, content_->heightFor(measurer, frame.width)};
  setOffset(offset_);
}

void ScrollView::setOffset(double offset) {
  offset_ = std::clamp(offset, 0.0, std::max(0.0, content_->frame.height - frame.height));
  contentOffset = {0, -offset_};
}

bool ScrollView::onScroll(const ViewScrollEvent& event) {
  const double before = offset_;
  setOffset(offset_ + event.dy);
  if (offset_ == before) return false;
  setNeedsRedraw();
  return true;
}

void ScrollView::paint(Canvas& canvas) {
  const double overflow = content_->frame.height - frame.height;
  if (overflow <= 0) return;
  // A thin indicator, drawn below the content's own layers is enough: it sits in the right margin.
  const double h = std::max(24.0, frame.height * frame.height / content_->frame.height);
  const double y = (frame.height - h) * (offset_ / overflow);
  canvas.fill(Path().addRoundedRect({frame.width - 4, y, 3, h}, 1.5), Color::rgb(0xffffff, 0.18));
}

}  // namespace quillmark
