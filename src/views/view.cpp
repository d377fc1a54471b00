#include "views/view.h"

#include <algorithm>

namespace quillmark {
namespace {

// The keyboard-focus blue of both platforms' controls, the same on every skin.
constexpr Color kFocusRing = Color::rgb(0x4c9ffe, 0.95);

}  // namespace

double View::heightFor(TextMeasurer&, double) { return fixedHeight; }

void View::layout(TextMeasurer&) {}

void View::layoutTree(TextMeasurer& measurer) {
  layout(measurer);
  for (auto& child : children_) {
    if (child->visible) child->layoutTree(measurer);
  }
}

void View::paintTree(Canvas& canvas) {
  if (!visible) return;
  canvas.save();
  canvas.translate(frame.x, frame.y);
  paint(canvas);
  if (clipsChildren) canvas.clip(Path().addRect({0, 0, frame.width, frame.height}));
  canvas.translate(contentOffset.x, contentOffset.y);
  for (auto& child : children_) {
    // What a scrolling view has moved out of sight is not drawn at all.
    if (clipsChildren &&
        (child->frame.maxY() + contentOffset.y < 0 || child->frame.y + contentOffset.y > frame.height))
      continue;
    child->paintTree(canvas);
  }
  canvas.restore();
  if (focused && focusRingShown) {
    canvas.save();
    canvas.translate(frame.x, frame.y);
    canvas.stroke(Path().addRoundedRect({-2, -2, frame.width + 4, frame.height + 4}, 6), kFocusRing, 2);
    canvas.restore();
  }
}

View* View::hitTest(Point p) {
  if (!visible || p.x < 0 || p.y < 0 || p.x >= frame.width || p.y >= frame.height) return nullptr;
  const Point inner{p.x - contentOffset.x, p.y - contentOffset.y};
  for (auto it = children_.rbegin(); it != children_.rend(); ++it) {
    View& child = **it;
    if (View* hit = child.hitTest({inner.x - child.frame.x, inner.y - child.frame.y})) return hit;
  }
  return takesPointer() ? this : nullptr;
}

Point View::originIn(const View* ancestor) const {
  Point p{frame.x, frame.y};
  for (const View* v = parent_; v; v = v->parent_) {
    p = {p.x + v->contentOffset.x, p.y + v->contentOffset.y};
    if (v == ancestor || !v->parent_) break;  // the reference view's own frame does not count
    p = {p.x + v->frame.x, p.y + v->frame.y};
  }
  return p;
}

View* View::findById(std::string_view wanted) {
  if (id == wanted) return this;
  for (auto& child : children_) {
    if (View* found = child->findById(wanted)) return found;
  }
  return nullptr;
}

void View::setNeedsRedraw() {
  View* root = this;
  while (root->parent_) root = root->parent_;
  if (root->redrawHandler) root->redrawHandler();
}

double VStack::heightFor(TextMeasurer& measurer, double width) {
  double height = 2 * padding_;
  int shown = 0;
  for (auto& child : children()) {
    if (!child->visible) continue;
    height += child->heightFor(measurer, width - 2 * padding_);
    ++shown;
  }
  return height + spacing_ * std::max(0, shown - 1);
}

void VStack::layout(TextMeasurer& measurer) {
  double y = padding_;
  const double width = frame.width - 2 * padding_;
  for (auto& child : children()) {
    if (!child->visible) continue;
    const double h = child->heightFor(measurer, width);
    child->frame = {padding_, y, width, h};
    y += h + spacing_;
  }
}

std::vector<double> HStack::widths(double total) const {
  double fixed = 0;
  int flexible = 0;
  int shown = 0;
  for (auto& child : children()) {
    if (!child->visible) continue;
    ++shown;
    if (child->fixedWidth > 0)
      fixed += child->fixedWidth;
    else
      ++flexible;
  }
  const double share =
      flexible ? std::max(0.0, total - fixed - spacing_ * std::max(0, shown - 1)) / flexible : 0;
  std::vector<double> out;
  for (auto& child : children()) out.push_back(child->fixedWidth > 0 ? child->fixedWidth : share);
  return out;
}

double HStack::heightFor(TextMeasurer& measurer, double width) {
  const auto w = widths(width);
  double height = fixedHeight;
  for (std::size_t i = 0; i < children().size(); ++i) {
    if (children()[i]->visible) height = std::max(height, children()[i]->heightFor(measurer, w[i]));
  }
  return height;
}

void HStack::layout(TextMeasurer& measurer) {
  const auto w = widths(frame.width);
  double x = 0;
  for (std::size_t i = 0; i < children().size(); ++i) {
    View& child = *children()[i];
    if (!child.visible) continue;
    const double h = child.heightFor(measurer, w[i]);
    child.frame = {x, (frame.height - h) / 2, w[i], h};
    x += w[i] + spacing_;
  }
}

}  // namespace quillmark
