#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/clock.h"
#include "menubar/panel_anchor.h"
#include "menubar/panel_flip_state.h"
#include "views/events.h"
#include "views/face_context.h"
#include "views/view.h"

namespace quillmark {

// What the panel draws of the menu-bar shell's own state, which the shell owns and changes: where
// the arrow points (PanelAnchor), which face shows and the turn between them (PanelFlipState), and
// the clock the animations run on. The root follows both published values and asks for a redraw
// when either changes, so a shell only sets them.
struct PanelChrome {
  PanelAnchor& anchor;
  PanelFlipState& flip;
  const Clock& clock;
};

// The panel's root view: the card with its arrow, the front face (the chosen skin) and the
// settings face on its back, drawn at the flip's current pose, and the dispatch of plain input
// events to the view tree (hit testing, hover and pressed states, keyboard focus). The shell sets
// the model, paints when asked, forwards events and paints frames only while animating() is true;
// nothing here runs on a timer of its own.
//
// Main thread only. `measurer` is used for layout between paints; it and the chrome's objects
// must outlive the root.
class PanelRoot {
 public:
  static constexpr double kWidth = 400;
  static constexpr double kBodyHeight = 660;
  // The card's outline is the shell's (PanelAnchor, PanelCardShape); the views only draw it.
  static constexpr double kArrowHeight = PanelAnchor::arrowHeight;

  PanelRoot(PanelActions& actions, TextMeasurer& measurer, PanelChrome chrome);
  ~PanelRoot();
  PanelRoot(const PanelRoot&) = delete;
  PanelRoot& operator=(const PanelRoot&) = delete;

  // Published state changed: the faces are rebuilt at the next paint or event.
  void setModel(PanelModel model);
  [[nodiscard]] const PanelModel& model() const { return model_; }
  // The arrow's tip, from the panel's left edge (sets the shared anchor, which every card with an
  // arrow follows); drawn where PanelAnchor::clamp puts it.
  void setArrowX(double x) { chrome_.anchor.arrowX.set(x); }
  // Turns to the settings face (true) or back, as the gear and Done do.
  void showSettings(bool settings) { chrome_.flip.flipped.set(settings); }
  [[nodiscard]] static double clampedArrowX(double arrowX, double width) {
    return PanelAnchor::clamp(arrowX, width);
  }
  [[nodiscard]] Size size() const { return {kWidth, kBodyHeight + kArrowHeight}; }

  void paint(Canvas& canvas);
  void pointer(const ViewPointerEvent& event);
  void scroll(const ViewScrollEvent& event);
  // False when nothing took the key (Escape then closes the panel).
  bool key(const ViewKeyEvent& event);
  void text(const ViewTextEvent& event);

  // Called whenever the panel should be painted again.
  std::function<void()> needsRedraw;
  // Text the user copied or cut, for the platform's clipboard.
  std::function<void(const std::string&)> copyToClipboard;

  // True while the card turns or a row opens or closes.
  [[nodiscard]] bool animating() const;
  // Shows the front face without a turn (every reopening does this).
  void resetFlip() { chrome_.flip.reset(); }

  // For tests and the shells: the laid-out tree (rebuilt first when stale), and view state.
  [[nodiscard]] View& tree();
  [[nodiscard]] PanelState& state() { return state_; }
  // The view that receives keys and text, or null.
  [[nodiscard]] View* focusedView() const { return focused_; }
  [[nodiscard]] static bool isInside(const View* view, const View* ancestor);

 private:
  void markChanged();
  // Moves the row spring to the clock's time; the faces are rebuilt when it moved.
  void stepAnimations();
  [[nodiscard]] const Theme& theme() const;
  void ensureBuilt();
  void rebuild();
  [[nodiscard]] View* activeFace() const;
  [[nodiscard]] Point toFace(Point p) const;
  // Where the faces start: below the arrow, or at the top when the arrow is underneath.
  [[nodiscard]] double faceTop() const;
  // Asks for a redraw when the hover moved, unless `quietly` (a rebuild that is being painted).
  void setHovered(View* view, bool quietly = false);
  void setFocused(View* view);
  void moveFocus(bool backwards);
  static void scrollIntoView(View& view);
  static void collectFocusable(View& view, std::vector<View*>& out);
  static std::vector<std::string> focusPathOf(const View* view, const View* face);
  static View* resolveFocusPath(View* face, const std::vector<std::string>& path);
  void paintCard(Canvas& canvas) const;

  PanelActions& actions_;
  TextMeasurer& measurer_;
  PanelModel model_;
  PanelState state_;
  std::optional<FaceContext> ctx_;  // rebuilt with the tree, so the skin's theme follows the model
  PanelChrome chrome_;
  Published<double>::Token arrowToken_;
  Published<bool>::Token arrowBelowToken_;
  Published<bool>::Token flipToken_;
  double animatedUntil_;  // the clock's time the row spring was last moved to
  View root_;
  View* front_ = nullptr;
  View* back_ = nullptr;
  bool stale_ = true;
  View* hovered_ = nullptr;
  View* pressed_ = nullptr;
  View* focused_ = nullptr;
  std::vector<std::string> focusPath_;
  bool focusRingVisible_ = false;
  Point lastPointer_{-1, -1};
};

}  // namespace quillmark
