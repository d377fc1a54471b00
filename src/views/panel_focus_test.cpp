// The keyboard: Tab and Shift-Tab walk the controls in the order they are drawn, with the ring on
// the focused one and the list scrolled to it; the focus survives a tick; Space presses the
// focused control; a confirmation takes Enter as its default choice and Escape as cancel, and
// keeps Tab among its own buttons.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "views/controls.h"
#include "views/panel_content.h"
#include "views/scroll_view.h"
#include "views/testing/panel_fixture.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using testing::PanelFixture;
using testing::sampleModel;

// Where a view lies in its face with the list scrolled to the top.
Rect unscrolled(const View& v, const View& face) {
  Point o = v.originIn(&face);
  for (const View* a = v.parent(); a && a != &face; a = a->parent())
    if (auto* s = dynamic_cast<const ScrollView*>(a)) o.y += s->offset();
  return {o.x, o.y, v.frame.width, v.frame.height};
}

TEST(PanelFocusTest, TabWalksTheControlsInVisualOrder) {
  for (const bool settings : {false, true}) {
    PanelFixture f;
    f.root.setModel(sampleModel());
    if (settings) {
      ASSERT_TRUE(f.click("gear"));
    }
    View& face = *f.root.tree().children()[settings ? 1 : 0];
    auto* scroll = static_cast<ScrollView*>(face.findById("scroll"));
    std::vector<View*> seen;
    for (int i = 0; i < 200; ++i) {
      ASSERT_TRUE(f.root.key({Key::tab}));
      View* v = f.root.focusedView();
      ASSERT_NE(v, nullptr);
      if (!seen.empty() && v == seen.front()) break;
      EXPECT_TRUE(v->focusRingShown);
      seen.push_back(v);
      // In sight: inside the list's visible part when it is in the list.
      const Point o = v->originIn(&face);
      if (PanelRoot::isInside(v, scroll)) {
        EXPECT_GE(o.y, scroll->frame.y - 0.5) << v->id;
        EXPECT_LE(o.y + v->frame.height, scroll->frame.maxY() + 0.5) << v->id;
      }
    }
    ASSERT_GE(seen.size(), 7u);  // glass: the gear, two pickers, search and three rows
    for (std::size_t i = 1; i < seen.size(); ++i) {
      const Rect a = unscrolled(*seen[i - 1], face);
      const Rect b = unscrolled(*seen[i], face);
      const bool below = b.y >= a.maxY() - 1;
      const bool sameLineRight = b.y < a.maxY() && a.y < b.maxY() && b.x >= a.maxX() - 1;
      EXPECT_TRUE(below || sameLineRight)
          << "focus " << i << " (" << seen[i]->id << ") comes before " << seen[i - 1]->id;
    }
    // Shift-Tab goes back the same way; the first control wraps to the last.
    f.root.key({Key::tab, true});
    EXPECT_EQ(f.root.focusedView(), seen.back());
    f.root.key({Key::tab, true});
    EXPECT_EQ(f.root.focusedView(), seen[seen.size() - 2]);
  }
}

TEST(PanelFocusTest, FocusSurvivesATickAndSpacePressesTheFocusedControl) {
  PanelFixture f;
  // To the launch-at-login switch on the settings face by Tab, through the shell's keys.
  PanelContent content(f.actions, *f.canvas, f.chrome);
  content.root().setModel(sampleModel());
  f.showSettings();
  View* target = nullptr;
  for (int i = 0; i < 40 && !target; ++i) {
    content.editKey(EditKey::tab, {});
    if (content.root().focusedView()->id == "launchAtLogin") target = content.root().focusedView();
  }
  ASSERT_NE(target, nullptr);
  content.root().setModel(sampleModel());  // a tick rebuilds every view
  ASSERT_NE(content.root().focusedView(), nullptr);
  EXPECT_EQ(content.root().focusedView()->id, "launchAtLogin");
  EXPECT_TRUE(content.root().focusedView()->focusRingShown);
  EXPECT_TRUE(content.editKey(EditKey::space, {}));
  EXPECT_FALSE(content.wantsTextInput());
  content.text({TextInput::Kind::commit, " "});  // a shell that types the space instead
  EXPECT_THAT(f.actions.calls, ElementsAre("setLaunchAtLogin 1", "setLaunchAtLogin 0"));
  // A click hides the ring.
  content.pointer({PointerEvent::Kind::down, 5, 300, false, 1, {}});
  EXPECT_FALSE(content.root().focusedView() && content.root().focusedView()->focusRingShown);
}

TEST(PanelFocusTest, DialogsTakeEnterAndEscapeAndKeepTab) {
  PanelFixture f;
  PanelModel model = sampleModel();
  f.root.setModel(model);
  f.root.state().pendingPause = PanelState::PendingProcess{100, "Safari"};
  f.root.setModel(model);
  View* dialog = f.find("dialog");
  ASSERT_NE(dialog, nullptr);
  for (int i = 0; i < 5; ++i) {
    f.root.key({Key::tab});
    EXPECT_TRUE(PanelRoot::isInside(f.root.focusedView(), dialog));
    EXPECT_NE(f.root.focusedView(), dialog);
  }
  EXPECT_TRUE(f.root.key({Key::escape}));
  EXPECT_EQ(f.find("dialog"), nullptr);
  EXPECT_TRUE(f.actions.calls.empty());

  f.root.state().pendingPause = PanelState::PendingProcess{100, "Safari"};
  f.root.setModel(model);
  EXPECT_TRUE(f.root.key({Key::enter}));  // the default: pause
  f.root.state().pendingKill = PanelState::PendingProcess{101, "Mail"};
  f.root.setModel(model);
  f.root.key({Key::tab});
  f.root.key({Key::tab});                 // "always allow"
  EXPECT_TRUE(f.root.key({Key::enter}));  // still the default choice, not the focused button
  f.root.paint(*f.canvas);                // the next frame, without the dialog
  f.root.state().pendingKill = PanelState::PendingProcess{101, "Mail"};
  f.root.setModel(model);
  f.root.key({Key::tab, true});  // cancel, the last button
  EXPECT_TRUE(f.root.key({Key::space}));
  EXPECT_EQ(f.find("dialog"), nullptr);
  EXPECT_THAT(f.actions.calls, ElementsAre("pause 100 Safari", "terminate 101 Mail"));
}

}  // namespace
}  // namespace quillmark
