#pragma once

#include <functional>

#include "base/clock.h"
#include "base/shared_instance.h"
#include "menubar/panel_anchor.h"
#include "menubar/panel_flip_state.h"
#include "menubar/screen_geometry.h"

namespace quillmark {

// The platform's side of the panel: one borderless, non-activating, key-capable window of
// PanelWindowController::kWidth × kHeight points that hosts the panel's content. The controller
// decides when; the host only does. Main thread only.
class PanelWindowHost {
 public:
  virtual ~PanelWindowHost() = default;
  // Creates the window with its content (the panel is rebuilt on every opening).
  virtual void build() = 0;
  [[nodiscard]] virtual bool isVisible() const = 0;
  virtual void moveTo(ScreenPoint origin) = 0;
  // Makes the window key (so its text fields take typing) and brings it to the front, without
  // activating the application.
  virtual void makeKeyAndOrderFront() = 0;
  // Tears the content down and closes the window; events of the old window no longer arrive.
  virtual void destroy() = 0;
};

// The anchored panel: opens it under the status item with the arrow pointing at the item, closes
// it when it loses key status (unless a dialog holds it), on Escape or on a second click, and
// ignores a reopening within 0.25 s of a close (the click that made the open panel resign key must
// not reopen it). While closed the sampling engine does not publish to views, and the card is back
// on its front face. Main thread only.
class PanelWindowController {
 public:
  static constexpr double kWidth = 400;
  static constexpr double kHeight = PanelAnchor::arrowHeight + 660;
  static constexpr double kReopenDebounceSeconds = 0.25;

  struct Environment {
    PanelWindowHost& host;
    const Clock& clock;
    PanelAnchor& anchor;
    PanelFlipState& flip;
    // Monitor::setPublishingPaused on the shared monitor.
    std::function<void(bool paused)> setPublishingPaused;
  };

  explicit PanelWindowController(Environment environment) : env_(std::move(environment)) {}
  PanelWindowController(const PanelWindowController&) = delete;
  PanelWindowController& operator=(const PanelWindowController&) = delete;

  static PanelWindowController& shared() { return SharedInstance<PanelWindowController>::get(); }

  void toggle(const AnchorGeometry& anchor);
  void show(const AnchorGeometry& anchor);
  void close();
  [[nodiscard]] bool isShown() const { return hasPanel_ && env_.host.isVisible(); }

  // Window delegate: the panel lost key status (a click elsewhere).
  void windowDidResignKey();
  // Escape in the panel.
  void cancelOperation() { close(); }

  // Set while a confirmation is shown above the panel; losing key status then keeps it open.
  bool dialogHold = false;

 private:
  Environment env_;
  bool hasPanel_ = false;
  double lastCloseAt_ = 0;  // monotonic seconds
};

}  // namespace quillmark
