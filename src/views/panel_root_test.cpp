// The panel as a user drives it: clicks land on the control drawn there, the search filters the
// rows, confirmations run the chosen operation (or none), and settings controls call theirs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "views/controls.h"
#include "views/label.h"
#include "views/scroll_view.h"
#include "views/testing/panel_fixture.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using testing::PanelFixture;
using testing::sampleModel;

// Scrolls a face through its whole length and checks, at each position, that a click at the centre
// of every control in sight hits that control and nothing drawn above or beside it.
void expectHitTargetsLand(View& face) {
  auto* scroll = static_cast<ScrollView*>(face.findById("scroll"));
  ASSERT_NE(scroll, nullptr);
  const double top = scroll->originIn().y;
  int checked = 0;
  for (double offset = 0; offset < scroll->content().frame.height; offset += scroll->frame.height / 2) {
    scroll->setOffset(offset);
    std::vector<View*> pending{&face};
    while (!pending.empty()) {
      View* v = pending.back();
      pending.pop_back();
      for (auto& child : v->children()) pending.push_back(child.get());
      auto* control = dynamic_cast<Control*>(v);
      if (!control || !control->enabled || v->frame.width <= 0) continue;
      const Point c = PanelFixture::at(*v);
      bool inHeader = true;
      for (View* a = v->parent(); a; a = a->parent()) inHeader = inHeader && a != scroll;
      if (!inHeader && (c.y < top + 1 || c.y >= top + scroll->frame.height - 1)) continue;
      EXPECT_EQ(face.hitTest({c.x - face.frame.x, c.y - face.frame.y}), v) << "control " << v->id;
      ++checked;
    }
  }
  scroll->setOffset(0);
  EXPECT_GT(checked, 10);
}

TEST(PanelRootTest, ClicksLandOnTheControlsDrawnThere) {
  PanelFixture f;
  PanelModel model = sampleModel();
  f.root.setModel(model);
  expectHitTargetsLand(*f.root.tree().children()[0]);
  // A tick that rebuilds the faces between press and release does not lose the click.
  const Point gear = PanelFixture::at(*f.find("gear"));
  f.root.pointer({ViewPointerEvent::Kind::down, gear});
  f.root.setModel(model);
  f.root.pointer({ViewPointerEvent::Kind::up, gear});
  EXPECT_TRUE(f.flip.flipped());
  // The host paints frames only while the turn lasts.
  EXPECT_TRUE(f.root.animating());
  f.settle();
  EXPECT_FALSE(f.root.animating());
  expectHitTargetsLand(*f.root.tree().children()[1]);

  // A few settings controls call their operation with the value shown.
  auto* interval = f.find("interval");
  PanelFixture::reveal(*interval);
  f.click(PanelFixture::at(*interval, 5.0 / 6));  // the third segment: 5 s
  ASSERT_TRUE(f.click("launchAtLogin"));
  ASSERT_TRUE(f.click("plus"));  // the first stepper: the CPU threshold
  EXPECT_THAT(f.actions.calls,
              ElementsAre("setRefreshInterval 5", "setLaunchAtLogin 1", "setCpuAlarmThreshold 90"));
  ASSERT_TRUE(f.click("done"));
  EXPECT_FALSE(f.flip.flipped());
}

TEST(PanelRootTest, SortAndSearchChooseTheRows) {
  PanelFixture f;
  f.root.setModel(sampleModel());
  // CPU order drops idle rows; the long name is there, cut by its label rather than its row.
  EXPECT_EQ(f.rowNames().size(), 3u);
  EXPECT_EQ(f.rowNames()[0], "Web Content Helper");
  auto* sort = f.find("sort");
  PanelFixture::reveal(*sort);
  f.click(PanelFixture::at(*sort, 0.5));  // Memory
  EXPECT_EQ(f.rowNames().front(), "Xcode");

  ASSERT_TRUE(f.click("searchToggle"));
  ASSERT_TRUE(f.click("search"));
  f.type("W");
  f.type("e");
  EXPECT_THAT(f.rowNames(), ElementsAre("Web Content Helper"));
  f.root.key({Key::backspace});
  f.root.key({Key::backspace});
  f.type("x");
  // Idle rows are findable while searching.
  EXPECT_THAT(f.rowNames(), ElementsAre("Xcode"));
  // Composed text is provisional: it filters nothing until committed.
  f.root.text({"ko", true});
  EXPECT_THAT(f.rowNames(), ElementsAre("Xcode"));
  f.root.text({"", false});
  f.root.key({Key::escape});
  EXPECT_EQ(f.rowNames().size(), 5u);

  // Where nothing can estimate energy the sort offers CPU and memory only.
  PanelModel noEnergy = sampleModel();
  noEnergy.energyAvailable = false;
  f.root.setModel(noEnergy);
  f.click(PanelFixture::at(*f.find("sort"), 0.1));
  f.click(PanelFixture::at(*f.find("sort"), 0.9));
  EXPECT_EQ(f.rowNames().front(), "Xcode");
}

TEST(PanelRootTest, ConfirmationsCallTheChosenOperationOrNone) {
  PanelFixture f;
  PanelModel model = sampleModel();
  model.killWhitelist = {"Web Content Helper"};
  f.root.setModel(model);
  ASSERT_TRUE(f.click("row:100"));
  ASSERT_TRUE(f.click("pause"));
  ASSERT_NE(f.find("dialog"), nullptr);
  ASSERT_TRUE(f.click("choice1"));  // Cancel
  EXPECT_EQ(f.find("dialog"), nullptr);
  ASSERT_TRUE(f.click("pause"));
  EXPECT_TRUE(f.root.key({Key::escape}));  // Escape cancels too
  ASSERT_TRUE(f.click("pause"));
  ASSERT_TRUE(f.click("choice0"));
  EXPECT_THAT(f.actions.calls, ElementsAre("expand 100", "pause 100 Safari"));

  f.actions.calls.clear();
  ASSERT_TRUE(f.click("terminate"));
  ASSERT_TRUE(f.click("choice2"));  // Cancel
  ASSERT_TRUE(f.click("terminate"));
  ASSERT_TRUE(f.click("choice1"));  // Always
  EXPECT_THAT(f.actions.calls, ElementsAre("addPreauthorized Safari", "terminate 100 Safari"));
  EXPECT_FALSE(f.root.state().expandedPid);

  // A pre-authorised name is terminated at once, without a dialog.
  f.actions.calls.clear();
  ASSERT_TRUE(f.click("row:101"));
  ASSERT_TRUE(f.click("terminate"));
  EXPECT_EQ(f.find("dialog"), nullptr);
  EXPECT_THAT(f.actions.calls, ElementsAre("expand 101", "terminate 101 Web Content Helper"));
}

TEST(PanelRootTest, ProtectedAndPausedRowsOfferTheRightActions) {
  PanelFixture f;
  PanelModel model = sampleModel();
  model.pausedGroupOfPid = {{101, 90}};
  model.paused = {{90, 90, "Web Content Helper"}};
  f.actions.notKillable = {100};
  f.actions.notPausable = {100};
  f.root.setModel(model);
  ASSERT_TRUE(f.click("row:100"));
  EXPECT_EQ(f.find("terminate"), nullptr);
  EXPECT_EQ(f.find("pause"), nullptr);
  ASSERT_TRUE(f.click("row:101"));
  ASSERT_TRUE(f.click("resume"));
  ASSERT_TRUE(f.click("resume:90"));  // the banner's button
  EXPECT_THAT(f.actions.calls, ElementsAre("expand 100", "expand 101", "resume 90", "resume 90"));
}

TEST(PanelRootTest, RedrawsOnlyWhenSomethingChanged) {
  PanelFixture f;
  int redraws = 0;
  f.root.needsRedraw = [&] { ++redraws; };
  f.root.setModel(sampleModel());
  EXPECT_EQ(redraws, 1);
  const View* gear = f.find("gear");
  f.root.pointer({ViewPointerEvent::Kind::move, PanelFixture::at(*gear, 0.3)});
  EXPECT_EQ(redraws, 2);  // hover begins
  f.root.pointer({ViewPointerEvent::Kind::move, PanelFixture::at(*gear, 0.6)});
  f.root.pointer({ViewPointerEvent::Kind::move, PanelFixture::at(*gear, 0.7)});
  EXPECT_EQ(redraws, 2);  // still the same hover: nothing to draw
  f.root.setModel(sampleModel());
  f.root.paint(*f.canvas);
  EXPECT_EQ(redraws, 3);  // a tick is one redraw, also with the pointer over the panel
  EXPECT_FALSE(f.root.animating());
}

TEST(PanelRootTest, ScrollingStopsAtBothEnds) {
  PanelFixture f;
  f.root.setModel(sampleModel());
  auto* scroll = static_cast<ScrollView*>(f.find("scroll"));
  const Point inside = PanelFixture::at(*scroll);
  f.root.scroll({inside, 1e6});
  EXPECT_EQ(scroll->offset(), scroll->content().frame.height - scroll->frame.height);
  EXPECT_GT(scroll->offset(), 0);
  f.root.scroll({inside, -1e6});
  EXPECT_EQ(scroll->offset(), 0);
  // The header does not scroll.
  f.root.scroll({{200, 20}, 100});
  EXPECT_EQ(scroll->offset(), 0);
}

TEST(PanelRootTest, HiddenModulesAndAbsentValues) {
  PanelFixture f;
  PanelModel model = sampleModel();
  model.hiddenModules = {PanelModule::network, PanelModule::processes};
  model.diskFree.reset();
  model.diskTotal.reset();
  f.root.setModel(model);
  EXPECT_EQ(f.find("network"), nullptr);
  EXPECT_EQ(f.find("processes"), nullptr);
  ASSERT_NE(f.find("gpu"), nullptr);
  // No GPU and no disk reading: "No value", never "0".
  const auto figure = [&](const char* card) {
    return static_cast<Label*>(f.find(card)->children()[0]->children()[1].get())->text;
  };
  EXPECT_EQ(figure("gpu"), "No value");
  EXPECT_EQ(figure("disk"), "No value");
}

}  // namespace
}  // namespace quillmark
