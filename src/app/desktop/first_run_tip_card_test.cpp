#include "app/desktop/first_run_tip_card.h"

#include <gtest/gtest.h>

#include "base/defaults_store.h"
#include "views/canvas_cairo.h"

namespace quillmark {
namespace {

class FirstRunTipCardTest : public ::testing::Test {
 protected:
  PointerEvent at(PointerEvent::Kind kind, double x, double y) const {
    PointerEvent e;
    e.kind = kind;
    e.x = x;
    e.y = y;
    return e;
  }
  void click(double x, double y) {
    card.pointer(at(PointerEvent::Kind::down, x, y));
    card.pointer(at(PointerEvent::Kind::up, x, y));
  }

  MemoryDefaultsStore store;
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  PanelAnchor anchor;
  int dismissals = 0;
  FirstRunTipCard card{anchor, l10n, [this] { ++dismissals; }};
};

TEST_F(FirstRunTipCardTest, OnlyAPressAndReleaseOnTheButtonOrEnterOrEscapeDismiss) {
  const ContentRect b = card.button();
  click(20, 20);
  EXPECT_EQ(dismissals, 0);
  // Pressed on the button, released beside it: the user changed their mind.
  card.pointer(at(PointerEvent::Kind::down, b.x + 5, b.y + 5));
  card.pointer(at(PointerEvent::Kind::up, b.x - 5, b.y + 5));
  EXPECT_EQ(dismissals, 0);
  click(b.x + b.width / 2, b.y + b.height / 2);
  EXPECT_EQ(dismissals, 1);
  EXPECT_TRUE(card.editKey(EditKey::escape, {}));
  EXPECT_TRUE(card.editKey(EditKey::enter, {}));
  EXPECT_FALSE(card.editKey(EditKey::tab, {}));
  EXPECT_EQ(dismissals, 3);
}

TEST_F(FirstRunTipCardTest, TheArrowFollowsTheSharedAnchorAboveAndBelowAndAsksForARepaint) {
  int repaints = 0;
  card.requestRepaint = [&repaints] { ++repaints; };
  anchor.arrowX.set(60);
  EXPECT_GE(repaints, 1);
  auto canvas = CairoCanvas::offscreen({card.width(), card.height()}, 1);
  card.paint(*canvas);
  EXPECT_GT(canvas->pixel(60, 4).a, 0.5);  // the arrow at the top, at x 60
  EXPECT_EQ(canvas->pixel(200, 2).a, 0);

  anchor.arrowBelow.set(true);
  const double bottomBefore = card.button().y;
  auto below = CairoCanvas::offscreen({card.width(), card.height()}, 1);
  card.paint(*below);
  EXPECT_GT(below->pixel(60, 154).a, 0.5);  // now hanging from the bottom edge
  EXPECT_EQ(below->pixel(200, 156).a, 0);
  EXPECT_GT(below->pixel(200, 2).a, 0.5);  // and the body reaches the top
  // The button stays inside the body, above the arrow's strip.
  EXPECT_LE(bottomBefore + card.button().height, card.height());
  EXPECT_LE(card.button().y + card.button().height, card.height() - PanelAnchor::arrowHeight);
}

}  // namespace
}  // namespace quillmark
