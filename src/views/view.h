#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "views/canvas.h"
#include "views/events.h"

namespace quillmark {

// A node of the panel's retained view tree: a frame in its parent's coordinates, children drawn
// above it in order, and event methods taking plain values in its own coordinates. A parent lays
// out its children (sets their frames); views only draw through the Canvas and act through the
// callbacks they were given, never through the platform. Main thread only.
class View {
 public:
  View() = default;
  virtual ~View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  template <class T>
  T& add(std::unique_ptr<T> child) {
    T& ref = *child;
    child->parent_ = this;
    children_.push_back(std::move(child));
    return ref;
  }
  template <class T, class... Args>
  T& make(Args&&... args) {
    return add(std::make_unique<T>(std::forward<Args>(args)...));
  }
  void clearChildren() { children_.clear(); }
  [[nodiscard]] const std::vector<std::unique_ptr<View>>& children() const { return children_; }
  [[nodiscard]] View* parent() const { return parent_; }

  Rect frame;
  bool visible = true;
  std::string id;  // a name tests and the host can find a view by

  // The height this view wants at `width` (a fixed height unless a subclass measures content).
  [[nodiscard]] virtual double heightFor(TextMeasurer& measurer, double width);
  double fixedHeight = 0;
  double fixedWidth = 0;  // used by HStack; 0 shares the remaining width
  // Places the children inside the frame; the default leaves their frames as they are.
  virtual void layout(TextMeasurer& measurer);
  void layoutTree(TextMeasurer& measurer);

  void paintTree(Canvas& canvas);
  virtual void paint(Canvas&) {}
  // Children are clipped to this view's bounds when set (scrolling lists).
  bool clipsChildren = false;

  // The deepest visible view under p (own coordinates) that takes pointer events, or null.
  [[nodiscard]] View* hitTest(Point p);
  [[nodiscard]] virtual bool takesPointer() const { return false; }
  virtual void onPointer(const ViewPointerEvent&) {}
  virtual bool onScroll(const ViewScrollEvent&) { return false; }
  [[nodiscard]] virtual bool focusable() const { return false; }
  // Whether a click gives this view the keyboard (a text field); buttons take it only by Tab, so
  // clicking one leaves the search field focused.
  [[nodiscard]] virtual bool focusOnClick() const { return focusable(); }
  virtual bool onKey(const ViewKeyEvent&) { return false; }
  virtual bool onText(const ViewTextEvent&) { return false; }

  bool hovered = false;
  bool pressed = false;
  bool focused = false;
  // Set by the root on the focused view while the keyboard moves the focus: a ring is drawn
  // around it (a pointer click hides it again).
  bool focusRingShown = false;

  // Offset added to children's frames when drawing and hit testing (a scroll position).
  Point contentOffset;
  // This view's origin in the coordinates of `ancestor` (the root when null).
  [[nodiscard]] Point originIn(const View* ancestor = nullptr) const;
  [[nodiscard]] View* findById(std::string_view wanted);
  // Asks the root's host for a new frame.
  void setNeedsRedraw();
  std::function<void()> redrawHandler;  // set on the root only

 private:
  View* parent_ = nullptr;
  std::vector<std::unique_ptr<View>> children_;
};

// Children one under the other at full width (minus padding), each at its heightFor.
class VStack : public View {
 public:
  explicit VStack(double spacing = 0, double padding = 0) : spacing_(spacing), padding_(padding) {}
  double heightFor(TextMeasurer& measurer, double width) override;
  void layout(TextMeasurer& measurer) override;

 private:
  double spacing_;
  double padding_;
};

// Children side by side: fixed widths first, the rest shared by the others; all as tall as the
// tallest child.
class HStack : public View {
 public:
  explicit HStack(double spacing = 0) : spacing_(spacing) {}
  double heightFor(TextMeasurer& measurer, double width) override;
  void layout(TextMeasurer& measurer) override;

 private:
  [[nodiscard]] std::vector<double> widths(double total) const;
  double spacing_;
};

}  // namespace quillmark
