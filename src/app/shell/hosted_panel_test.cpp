// The panel as the shells host it draws the shell's arrow and turn, and holds itself open while a
// confirmation is up.
#include "app/shell/hosted_panel.h"

#include <gtest/gtest.h>

#include <vector>

#include "views/canvas_cairo.h"
#include "views/testing/services_rig.h"
#include "views/view.h"

namespace quillmark {
namespace {

struct Hosted : testing::ServicesRig {
  std::unique_ptr<CairoCanvas> canvas = CairoCanvas::offscreen({400, 668}, 1);
  PanelAnchor anchor;
  PanelFlipState flip{clock};
  std::vector<bool> holds;
  std::unique_ptr<HostedPanel> panel = std::make_unique<HostedPanel>(
      services(), *canvas,
      HostedPanel::Shell{{anchor, flip, clock}, [this](bool hold) { holds.push_back(hold); }});

  static PointerEvent at(PointerEvent::Kind kind, Point p) {
    PointerEvent event;
    event.kind = kind;
    event.x = p.x;
    event.y = p.y;
    return event;
  }
  void click(const std::string& id) {
    View& tree = panel->content().root().tree();
    View* view = tree.children()[flip.flipped() ? 1 : 0]->findById(id);
    ASSERT_NE(view, nullptr) << id;
    const Point o = view->originIn();
    const Point centre{o.x + view->frame.width / 2, o.y + view->frame.height / 2};
    for (auto kind : {PointerEvent::Kind::down, PointerEvent::Kind::up}) panel->pointer(at(kind, centre));
  }
};

TEST(HostedPanelTest, TheArrowAndTheTurnAreTheShellsAndAnUnusedEscapeIsLeftToIt) {
  Hosted h;
  // The controller moves the anchor after building the panel; the arrow follows at once.
  h.anchor.arrowX.set(92);
  h.panel->paint(*h.canvas);
  EXPECT_GT(h.canvas->pixel(92, 3).a, 0.5);
  EXPECT_EQ(h.canvas->pixel(200, 3).a, 0);

  // The gear turns the shell's card, on the shell's clock; every close puts it back on its front.
  h.click("gear");
  EXPECT_TRUE(h.flip.flipped());
  EXPECT_TRUE(h.panel->animating());
  h.clock.advance(2);
  EXPECT_FALSE(h.panel->animating());
  h.flip.reset();

  // With nothing to cancel in the panel, Escape is left to the shell (which closes the panel).
  EXPECT_FALSE(h.panel->editKey(EditKey::escape, {}));
}

TEST(HostedPanelTest, AConfirmationHoldsThePanelOpenUntilItEnds) {
  Hosted h;
  h.panel->content().root().state().pendingKill = PanelState::PendingProcess{4242, "Safari"};
  h.panel->content().root().setModel(h.panel->content().root().model());
  h.panel->pointer(Hosted::at(PointerEvent::Kind::moved, {10, 300}));
  EXPECT_EQ(h.holds, std::vector<bool>{true});
  // Escape is the confirmation's cancel: used by the panel, and the hold ends with it.
  EXPECT_TRUE(h.panel->editKey(EditKey::escape, {}));
  EXPECT_EQ(h.holds, (std::vector<bool>{true, false}));

  // A panel closed while a confirmation is up releases its hold.
  h.panel->content().root().state().pendingPause = PanelState::PendingProcess{4242, "Safari"};
  h.panel->pointer(Hosted::at(PointerEvent::Kind::moved, {10, 300}));
  h.panel.reset();
  EXPECT_EQ(h.holds, (std::vector<bool>{true, false, true, false}));
}

}  // namespace
}  // namespace quillmark
