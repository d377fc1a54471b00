#include "menubar/tray_anchor.h"

#include <gtest/gtest.h>

#include "base/virtual_time.h"
#include "menubar/panel_card_shape.h"
#include "menubar/panel_window_controller.h"

namespace quillmark {
namespace {

// A 1920 × 1080 monitor in y-up space; panels take 32 points at the top or 40 at the bottom.
const ScreenRect kFrame{0, 0, 1920, 1080};
const MonitorArea kTopBar{kFrame, {0, 0, 1920, 1048}};
const MonitorArea kBottomBar{kFrame, {0, 40, 1920, 1040}};
const MonitorArea kNoBar{kFrame, kFrame};

class NullHost final : public PanelWindowHost {
 public:
  void build() override { visible = true; }
  bool isVisible() const override { return visible; }
  void moveTo(ScreenPoint point) override { origin = point; }
  void makeKeyAndOrderFront() override {}
  void destroy() override { visible = false; }
  bool visible = false;
  ScreenPoint origin;
};

struct Placed {
  ScreenPoint origin;
  double arrowX;
  bool arrowBelow;
};

Placed openAt(const std::optional<ScreenPoint>& click, const MonitorArea& monitor) {
  VirtualClock clock;
  NullHost host;
  PanelAnchor anchor;
  PanelFlipState flip{clock};
  PanelWindowController panel{{host, clock, anchor, flip, nullptr}};
  panel.show(trayAnchor(click, monitor));
  return {host.origin, anchor.arrowX(), anchor.arrowBelow()};
}

TEST(TrayAnchorTest, AClickInATopBarHangsThePanelFromTheWorkAreasTopWithTheArrowOnTheClick) {
  // Tray at the far right of the bar (y 1064 is inside the 32-point strip).
  const Placed p = openAt(ScreenPoint{1900, 1064}, kTopBar);
  EXPECT_DOUBLE_EQ(p.origin.y, 1048 - PanelWindowController::kHeight);  // top edge on the work area
  EXPECT_DOUBLE_EQ(p.origin.x, 1920 - 400 - 8);                         // clamped to the right
  EXPECT_DOUBLE_EQ(p.arrowX, 1900 - p.origin.x);
  EXPECT_FALSE(p.arrowBelow);
}

TEST(TrayAnchorTest, AClickInABottomBarStandsThePanelOnItWithTheArrowUnderneath) {
  const Placed p = openAt(ScreenPoint{60, 20}, kBottomBar);
  EXPECT_DOUBLE_EQ(p.origin.y, 40);  // the card's bottom edge (the arrow's tip) on the bar's top
  EXPECT_DOUBLE_EQ(p.origin.x, 8);
  EXPECT_DOUBLE_EQ(p.arrowX, 52);
  EXPECT_TRUE(p.arrowBelow);

  // The outline turns upside down with it: the arrow's tip at the card's bottom, under the click.
  PanelAnchor anchor;
  anchor.arrowX.set(p.arrowX);
  anchor.arrowBelow.set(true);
  const PanelCardShape shape = PanelCardShape::forCard(400, 668, anchor);
  EXPECT_DOUBLE_EQ(shape.body.y, 0);
  EXPECT_DOUBLE_EQ(shape.arrowTip.y, 668);
  EXPECT_DOUBLE_EQ(shape.arrowLeft.y, 660);
  EXPECT_DOUBLE_EQ(shape.arrowTip.x, 52);
}

TEST(TrayAnchorTest, APointInsideTheWorkAreaFlipsOnlyInItsLowerHalf) {
  const Placed high = openAt(ScreenPoint{900, 900}, kNoBar);
  EXPECT_FALSE(high.arrowBelow);
  EXPECT_DOUBLE_EQ(high.origin.y, 900 - kTrayItemSize / 2 - PanelWindowController::kHeight);
  const Placed low = openAt(ScreenPoint{900, 200}, kNoBar);
  EXPECT_TRUE(low.arrowBelow);
  EXPECT_DOUBLE_EQ(low.origin.y, 200 + kTrayItemSize / 2);
  // A card that fits below the point stays below it, even in the lower half.
  EXPECT_FALSE(placeNear({900, 700, 24, 24}, kFrame, 280, 158).arrowBelow);
}

TEST(TrayAnchorTest, WithoutAPointTheItemIsGuessedAtTheRightEndOfThePanelStrip) {
  const AnchorGeometry top = trayAnchor(std::nullopt, kTopBar);
  ASSERT_TRUE(top.item);
  EXPECT_DOUBLE_EQ(top.item->minY(), 1048);
  EXPECT_DOUBLE_EQ(top.item->maxX(), 1920);
  EXPECT_EQ(top.visibleFrame, kTopBar.workArea);

  const AnchorGeometry bottom = trayAnchor(std::nullopt, kBottomBar);
  EXPECT_DOUBLE_EQ(bottom.item->maxY(), 40);
  EXPECT_TRUE(placeNear(*bottom.item, bottom.visibleFrame, 280, 158).arrowBelow);

  const AnchorGeometry corner = trayAnchor(std::nullopt, kNoBar);
  EXPECT_DOUBLE_EQ(corner.item->maxY(), 1080);
  EXPECT_DOUBLE_EQ(corner.item->maxX(), 1920);
}

}  // namespace
}  // namespace quillmark
