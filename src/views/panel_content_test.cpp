// The shell's events reach the view tree the right way round: scroll direction, keys, compositions.
#include "views/panel_content.h"

#include <gtest/gtest.h>

#include "views/label.h"
#include "views/scroll_view.h"
#include "views/testing/panel_fixture.h"

namespace quillmark {
namespace {

TEST(PanelContentTest, TranslatesTheShellsEvents) {
  testing::PanelFixture f;
  PanelContent content(f.actions, *f.canvas, f.chrome);
  int repaints = 0;
  content.requestRepaint = [&] { ++repaints; };
  content.root().setModel(testing::sampleModel());
  EXPECT_EQ(repaints, 1);
  EXPECT_EQ(content.height(), 668);

  // The shell's negative delta shows what is below.
  auto* scroll = static_cast<ScrollView*>(content.root().tree().children()[0]->findById("scroll"));
  content.scroll({200, 300, 0, -40, true});
  EXPECT_EQ(scroll->offset(), 40);

  content.root().state().showSearch = true;
  content.root().setModel(testing::sampleModel());
  View* field = content.root().tree().children()[0]->findById("search");
  ASSERT_NE(field, nullptr);
  testing::PanelFixture::reveal(*field);
  const Point at = testing::PanelFixture::at(*field);
  PointerEvent click;
  click.x = at.x;
  click.y = at.y;
  click.kind = PointerEvent::Kind::down;
  content.pointer(click);
  click.kind = PointerEvent::Kind::up;
  content.pointer(click);
  EXPECT_TRUE(content.wantsTextInput());
  EXPECT_TRUE(content.text({TextInput::Kind::marked, "さ"}));
  EXPECT_TRUE(content.text({TextInput::Kind::unmark, ""}));
  EXPECT_TRUE(content.text({TextInput::Kind::commit, "Saf"}));
  EXPECT_EQ(content.root().state().searchText, "Saf");
  EXPECT_GT(content.caretRect().x, at.x - field->frame.width / 2);  // after the typed text
  EXPECT_TRUE(content.editKey(EditKey::deleteBackward, {}));
  EXPECT_EQ(content.root().state().searchText, "Sa");
  EXPECT_TRUE(content.editKey(EditKey::escape, {}));   // empties the field
  EXPECT_FALSE(content.editKey(EditKey::escape, {}));  // then closes the panel
}

TEST(PanelContentTest, FollowsTheShellsAnchorAndFlip) {
  testing::PanelFixture f;
  PanelContent content(f.actions, *f.canvas, f.chrome);
  int repaints = 0;
  content.requestRepaint = [&] { ++repaints; };
  f.anchor.arrowX.set(120);
  EXPECT_EQ(repaints, 1);
  EXPECT_FALSE(content.animating());
  f.flip.flipped.set(true);  // the menu's "Settings…" turns the card as the gear does
  EXPECT_EQ(repaints, 2);
  EXPECT_TRUE(content.animating());  // the shell paints frames while the card turns
  f.clock.advance(0.2);
  EXPECT_TRUE(content.animating());
  f.clock.advance(2);
  EXPECT_FALSE(content.animating());
  EXPECT_NE(content.root().tree().children()[1]->findById("done"), nullptr);
  f.flip.reset();
  EXPECT_FALSE(content.animating());  // a reopened panel starts on the front, without a turn
}

}  // namespace
}  // namespace quillmark
