// The first-run card: its button dismisses it once, keys that reach it do the same, and its arrow
// follows the shared anchor (clamped like the panel's) with a repaint when the anchor moves.
#include "views/first_run_tip_content.h"

#include <gtest/gtest.h>

#include "views/canvas_cairo.h"

namespace quillmark {
namespace {

struct TipFixture {
  PanelAnchor anchor;
  int dismissals = 0;
  int repaints = 0;
  FirstRunTipContent tip{anchor, PanelSkin::glass, [this] { ++dismissals; }};
  std::unique_ptr<CairoCanvas> canvas = CairoCanvas::offscreen({tip.width(), tip.height()}, 1);

  TipFixture() {
    tip.requestRepaint = [this] { ++repaints; };
  }
  void click(Point p, bool secondary = false) {
    tip.pointer({PointerEvent::Kind::down, p.x, p.y, secondary, 1, {}});
    tip.pointer({PointerEvent::Kind::up, p.x, p.y, secondary, 1, {}});
  }
  Point centreOf(const std::string& id) {
    const View* v = tip.tree(*canvas).findById(id);
    return {v->frame.midX(), v->frame.midY()};
  }
};

TEST(FirstRunTipContentTest, ButtonAndKeysDismiss) {
  TipFixture f;
  EXPECT_EQ(f.tip.width(), 280);
  EXPECT_EQ(f.tip.height(), 158);
  f.click(f.centreOf("title"));          // the texts are not buttons
  f.click(f.centreOf("dismiss"), true);  // nor is a right click
  EXPECT_EQ(f.dismissals, 0);
  f.click(f.centreOf("dismiss"));
  EXPECT_EQ(f.dismissals, 1);
  // A press that leaves the button before release is no click.
  const Point b = f.centreOf("dismiss");
  f.tip.pointer({PointerEvent::Kind::down, b.x, b.y, false, 1, {}});
  f.tip.pointer({PointerEvent::Kind::up, 5, 5, false, 1, {}});
  EXPECT_EQ(f.dismissals, 1);
  EXPECT_FALSE(f.tip.editKey(EditKey::tab, {}));
  EXPECT_TRUE(f.tip.editKey(EditKey::escape, {}));
  EXPECT_EQ(f.dismissals, 2);
}

TEST(FirstRunTipContentTest, ArrowFollowsTheSharedAnchor) {
  TipFixture f;
  f.anchor.arrowX.set(60);
  EXPECT_EQ(f.repaints, 1);
  f.tip.paint(*f.canvas);
  EXPECT_GT(f.canvas->pixel(60, 3).a, 0.5);
  EXPECT_EQ(f.canvas->pixel(140, 3).a, 0);
  // Pushed past the right edge, the arrow stops 24 points inside it.
  f.anchor.arrowX.set(400);
  f.canvas = CairoCanvas::offscreen({f.tip.width(), f.tip.height()}, 1);
  f.tip.paint(*f.canvas);
  EXPECT_GT(f.canvas->pixel(256, 3).a, 0.5);
  EXPECT_EQ(f.canvas->pixel(60, 3).a, 0);
}

}  // namespace
}  // namespace quillmark
