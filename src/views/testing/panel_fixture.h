#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/virtual_time.h"
#include "views/canvas_cairo.h"
#include "views/panel_root.h"
#include "views/testing/recording_actions.h"

namespace quillmark::testing {

// A panel on an offscreen canvas with recorded actions, and the pointer and keyboard of a user.
struct PanelFixture {
  RecordingActions actions;
  std::unique_ptr<CairoCanvas> canvas = CairoCanvas::offscreen({400, 668}, 1);
  VirtualClock clock;
  PanelAnchor anchor;
  PanelFlipState flip{clock};
  PanelChrome chrome{anchor, flip, clock};
  PanelRoot root{actions, *canvas, chrome};

  // The view with this id on the face in front, or null.
  View* find(const std::string& id) {
    View& tree = root.tree();
    View* face = flip.flipped() ? tree.children()[1].get() : tree.children()[0].get();
    return face->findById(id);
  }
  // Panel coordinates of a point inside view (its centre by default).
  static Point at(const View& view, double fx = 0.5, double fy = 0.5) {
    const Point o = view.originIn();
    return {o.x + view.frame.width * fx, o.y + view.frame.height * fy};
  }
  // A click, then time for any animation it started to finish.
  void click(Point p) {
    root.pointer({ViewPointerEvent::Kind::down, p});
    root.pointer({ViewPointerEvent::Kind::up, p});
    settle();
  }
  // Time for any animation to finish (the turn, a row opening), then a frame.
  void settle() {
    clock.advance(2);
    root.paint(*canvas);
  }
  // The settings face, turned to and settled.
  void showSettings() {
    root.showSettings(true);
    settle();
  }
  // Scrolls the list that holds view so that view is in sight, as a user would before clicking.
  static void reveal(View& view);
  // Clicks the view with this id (revealing it first); false when there is none.
  bool click(const std::string& id) {
    View* v = find(id);
    if (!v) return false;
    reveal(*v);
    click(at(*v));
    return true;
  }
  void type(const std::string& text) { root.text({text, false}); }
  // The process rows shown, as names in order.
  std::vector<std::string> rowNames();
};

// A model with a few processes: Safari (pid 100), Web Content Helper (101), "kernel_task" (0 %,
// pid 102), a long-named one (103), and Xcode (104, idle).
PanelModel sampleModel();

}  // namespace quillmark::testing
