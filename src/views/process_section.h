#pragma once

#include "views/face_context.h"
#include "views/view.h"

namespace quillmark {

// The process list of both skins: the sort picker, the search field (shown by the magnifier
// button), up to maxRows ranked rows with their bars, pinned rows first, and under the expanded
// row its details, the pinned trend and the pause/resume, terminate, pin and reveal actions.
void buildProcessSection(View& into, FaceContext& ctx, int maxRows);

// A trend line of a pinned process: nothing with fewer than two values, else one stroked line
// over the width, scaled to the larger of 100 % and its maximum.
class PinnedTrend : public View {
 public:
  PinnedTrend(std::vector<double> values, Color color) : values_(std::move(values)), color_(color) {
    fixedHeight = 28;
  }
  void paint(Canvas& canvas) override;

 private:
  std::vector<double> values_;
  Color color_;
};

}  // namespace quillmark
