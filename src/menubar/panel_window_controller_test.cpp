#include "menubar/panel_window_controller.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "base/virtual_time.h"
#include "menubar/panel_card_shape.h"
#include "menubar/skin_manager.h"

namespace quillmark {
namespace {

// A window that is visible from build() until destroy().
class FakePanelHost final : public PanelWindowHost {
 public:
  void build() override {
    ++builds;
    visible = true;
  }
  bool isVisible() const override { return visible; }
  void moveTo(ScreenPoint point) override { origin = point; }
  void makeKeyAndOrderFront() override { ++keyed; }
  void destroy() override { visible = false; }

  bool visible = false;
  int builds = 0;
  int keyed = 0;
  std::optional<ScreenPoint> origin;
};

const ScreenRect kScreen{0, 0, 1440, 875};

class PanelWindowControllerTest : public ::testing::Test {
 protected:
  AnchorGeometry itemCentredAt(double midX) const { return {ScreenRect{midX - 11, 875, 22, 24}, kScreen}; }

  VirtualClock clock;
  FakePanelHost host;
  PanelAnchor anchor;
  PanelFlipState flip{clock};
  std::vector<bool> publishingPaused;
  PanelWindowController panel{
      {host, clock, anchor, flip, [this](bool paused) { publishingPaused.push_back(paused); }}};
};

TEST_F(PanelWindowControllerTest, HangsUnderTheItemAndClampsToTheScreenWithTheArrowOnTheItem) {
  panel.show(itemCentredAt(100));
  EXPECT_EQ(host.origin, (ScreenPoint{8, 875 - 668}));
  EXPECT_DOUBLE_EQ(anchor.arrowX(), 92);

  panel.show(itemCentredAt(kScreen.maxX() - 30));
  EXPECT_DOUBLE_EQ(host.origin->x, kScreen.maxX() - 408);
  EXPECT_DOUBLE_EQ(anchor.arrowX(), 378);
  EXPECT_DOUBLE_EQ(anchor.clamped(400), 376);
  EXPECT_EQ(host.builds, 1);  // showing an open panel moves it, it is not built twice

  // Centred where there is room; the arrow is drawn at least 24 points from either edge.
  panel.show(itemCentredAt(700));
  EXPECT_DOUBLE_EQ(host.origin->x, 500);
  EXPECT_DOUBLE_EQ(anchor.arrowX(), 200);
  anchor.arrowX.set(3);
  EXPECT_DOUBLE_EQ(anchor.clamped(400), 24);
  // The drawn arrow's base stays off the rounded corner.
  const PanelCardShape shape = PanelCardShape::forCard(400, 668, anchor);
  EXPECT_DOUBLE_EQ(shape.arrowLeft.x, PanelAnchor::corner);
  EXPECT_DOUBLE_EQ(shape.arrowTip.x, 24);
  EXPECT_DOUBLE_EQ(shape.body.y, 8);
  EXPECT_DOUBLE_EQ(shape.body.height, 660);

  // A screen narrower than the panel: the right bound wins. Without a screen nothing is clamped.
  const CardPlacement narrow = placeUnder({100, 875, 22, 24}, ScreenRect{0, 0, 300, 875}, 400, 668);
  EXPECT_DOUBLE_EQ(narrow.origin.x, 300 - 400 - 8);
  EXPECT_DOUBLE_EQ(placeUnder({100, 875, 22, 24}, std::nullopt, 400, 668).origin.x, -89);
}

TEST_F(PanelWindowControllerTest, WithoutTheItemsPlaceItOpensWhereItWasAndStillTakesKey) {
  anchor.arrowX.set(150);
  panel.show({});
  EXPECT_FALSE(host.origin.has_value());
  EXPECT_DOUBLE_EQ(anchor.arrowX(), 150);
  EXPECT_EQ(host.keyed, 1);
  EXPECT_TRUE(panel.isShown());
}

TEST_F(PanelWindowControllerTest, ClickThatClosesDoesNotReopenAndTheDebounceEndsAfterAQuarterSecond) {
  panel.toggle(itemCentredAt(700));
  ASSERT_TRUE(panel.isShown());
  // The click on the item first makes the panel resign key, then toggles: it must stay closed.
  panel.windowDidResignKey();
  panel.toggle(itemCentredAt(700));
  EXPECT_FALSE(panel.isShown());
  clock.advance(0.25);
  panel.toggle(itemCentredAt(700));
  EXPECT_FALSE(panel.isShown());  // exactly 0.25 s is still inside the debounce
  clock.advance(0.01);
  panel.toggle(itemCentredAt(700));
  EXPECT_TRUE(panel.isShown());
  // A second click on an open panel closes it.
  panel.toggle(itemCentredAt(700));
  EXPECT_FALSE(panel.isShown());
  EXPECT_EQ(publishingPaused, (std::vector<bool>{false, true, false, true}));
}

TEST_F(PanelWindowControllerTest, DialogHoldKeepsThePanelAndEscapeClosesIt) {
  panel.show(itemCentredAt(700));
  panel.dialogHold = true;
  panel.windowDidResignKey();
  EXPECT_TRUE(panel.isShown());
  panel.cancelOperation();
  EXPECT_FALSE(panel.isShown());
}

TEST_F(PanelWindowControllerTest, ReopeningAfterClosingOnTheSettingsFaceShowsTheFrontWithoutATurn) {
  panel.show(itemCentredAt(700));
  flip.flipped.set(true);
  EXPECT_TRUE(flip.isTurning());
  clock.advance(0.1);
  const FlipPose early = flip.pose();
  EXPECT_GT(early.angle, 0);
  EXPECT_LT(early.angle, 90);
  EXPECT_FALSE(early.showsBack);
  clock.advance(2.0);
  EXPECT_FALSE(flip.isTurning());
  EXPECT_TRUE(flip.pose().showsBack);
  EXPECT_DOUBLE_EQ(flip.pose().angle, 180);

  panel.close();
  EXPECT_FALSE(flip.flipped());
  EXPECT_FALSE(flip.isTurning());
  EXPECT_DOUBLE_EQ(flip.pose().angle, 0);
  EXPECT_DOUBLE_EQ(flip.pose().widthScale, 1);
}

TEST(FlipSpringTest, TurnsWithASmallOvershootAndReversesFromWhereItIs) {
  FlipSpring spring(PanelFlipState::kResponse, PanelFlipState::kDampingFraction);
  spring.retarget(180, 0);
  double peak = 0;
  for (double t = 0; t < 2; t += 0.005) peak = std::max(peak, spring.valueAt(t));
  // A damping fraction of 0.85 overshoots by e^(-pi*0.85/sqrt(1-0.85^2)) of the distance, about 0.6 %.
  EXPECT_NEAR(peak, 180 * (1 + 0.0063), 0.2);
  // Most of the turn is done after half a response.
  EXPECT_GT(spring.valueAt(0.275), 150);
  EXPECT_LT(spring.valueAt(0.275), 175);

  const double midway = spring.valueAt(0.2);
  const double speed = spring.velocityAt(0.2);
  spring.retarget(0, 0.2);
  EXPECT_DOUBLE_EQ(spring.valueAt(0.2), midway);
  EXPECT_NEAR(spring.velocityAt(0.2), speed, 1e-9);
  EXPECT_GT(spring.valueAt(0.21), midway);  // it keeps its momentum for a moment
  EXPECT_TRUE(spring.settledAt(3));
  EXPECT_DOUBLE_EQ(spring.valueAt(3), 0);
}

TEST(FlipPoseTest, EachFaceVanishesExactlyWhenEdgeOn) {
  EXPECT_FALSE(PanelFlipState::poseAt(90).showsBack);
  EXPECT_TRUE(PanelFlipState::poseAt(90.5).showsBack);
  EXPECT_NEAR(PanelFlipState::poseAt(90).widthScale, 0, 1e-12);
  EXPECT_NEAR(PanelFlipState::poseAt(120).widthScale, 0.5, 1e-12);
}

TEST(SkinManagerTest, OnlyStoredVitalsSelectsVitalsAndEveryChoiceIsStored) {
  MemoryDefaultsStore store;
  EXPECT_EQ(SkinManager(store).skin(), PanelSkin::glass);
  store.set("panelSkin", std::string("Vitals"));
  EXPECT_EQ(SkinManager(store).skin(), PanelSkin::glass);
  store.set("panelSkin", true);
  EXPECT_EQ(SkinManager(store).skin(), PanelSkin::glass);
  store.set("panelSkin", std::string("vitals"));
  SkinManager skins(store);
  EXPECT_EQ(skins.skin(), PanelSkin::vitals);
  skins.skin.set(PanelSkin::glass);
  EXPECT_EQ(store.getString("panelSkin"), "glass");
}

}  // namespace
}  // namespace quillmark
