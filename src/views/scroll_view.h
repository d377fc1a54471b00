#pragma once

#include "views/view.h"

namespace quillmark {

// Shows a taller content view through its frame and scrolls it with the wheel or trackpad. The
// offset is kept between 0 and the overflow, so a shorter content never moves.
class ScrollView : public View {
 public:
  explicit ScrollView(std::unique_ptr<View> content);
  void layout(TextMeasurer& measurer) override;
  bool onScroll(const ViewScrollEvent& event) override;
  void paint(Canvas& canvas) override;
  [[nodiscard]] View& content() const { return *content_; }
  [[nodiscard]] double offset() const { return offset_; }
  void setOffset(double offset);

 private:
  View* content_;
  double offset_ = 0;
};

}  // namespace quillmark
