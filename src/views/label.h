#pragma once

#include <string>

#include "views/view.h"

namespace quillmark {

// A text in a box. A text too wide for its box is made smaller (down to 75 % of its size), wrapped
// onto more lines, or cut with an ellipsis, as `overflow` says; fits() tells after layout whether
// the text as drawn stays inside the box.
class Label : public View {
 public:
  enum class Overflow { shrink, wrap, ellipsize };

  Label(std::string initialText, TextStyle initialStyle, Overflow how = Overflow::shrink)
      : text(std::move(initialText)), style(initialStyle), overflow(how) {}

  std::string text;
  TextStyle style;
  Overflow overflow;

  double heightFor(TextMeasurer& measurer, double width) override;
  void layout(TextMeasurer& measurer) override;
  void paint(Canvas& canvas) override;

  [[nodiscard]] bool fits() const { return fits_; }
  [[nodiscard]] Size drawnSize() const { return drawnSize_; }

 private:
  [[nodiscard]] TextStyle styleFor(double width) const;

  TextStyle drawn_;
  Size drawnSize_;
  bool fits_ = true;
};

}  // namespace quillmark
