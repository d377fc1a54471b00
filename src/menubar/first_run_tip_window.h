#pragma once

#include <memory>

#include "base/main_loop.h"
#include "base/shared_instance.h"
#include "menubar/panel_anchor.h"
#include "menubar/screen_geometry.h"
#include "settings/settings_manager.h"

namespace quillmark {

// The platform's side of the first-run card: a small window of FirstRunTipWindow::kWidth ×
// kHeight points built like the panel (borderless, non-activating, above normal windows) whose
// content is the tip view; its button calls FirstRunTipWindow::dismiss(). Main thread only.
class FirstRunTipHost {
 public:
  virtual ~FirstRunTipHost() = default;
  // Builds the card and its content, not yet shown; false when there is no content to show.
  [[nodiscard]] virtual bool build() = 0;
  // Puts the built card at origin and brings it to the front without making it key or activating
  // the application.
  virtual void show(ScreenPoint origin) = 0;
  // Orders the card out and releases it.
  virtual void dismiss() = 0;
};

// The once-per-account card that hangs under the status item on the very first launch and tells
// how to use it. "hasLaunchedBefore" is written before the card appears, so quitting while it is
// up never shows it again, and only when the card could be built, so a launch that could not show
// it leaves the one chance to the next. It goes away by its button or after 8 s. Main thread only.
class FirstRunTipWindow {
 public:
  static constexpr double kWidth = 280;
  static constexpr double kHeight = PanelAnchor::arrowHeight + 150;
  static constexpr double kShowSeconds = 8.0;

  FirstRunTipWindow(FirstRunTipHost& host, MainLoop& loop, SettingsManager& settings, PanelAnchor& anchor)
      : host_(host), loop_(loop), settings_(settings), anchor_(anchor) {}
  FirstRunTipWindow(const FirstRunTipWindow&) = delete;
  FirstRunTipWindow& operator=(const FirstRunTipWindow&) = delete;

  static FirstRunTipWindow& shared() { return SharedInstance<FirstRunTipWindow>::get(); }

  void showIfNeeded(const AnchorGeometry& anchor);
  // Safe to call when no card is shown.
  void dismiss();
  [[nodiscard]] bool isShown() const { return shown_; }

 private:
  FirstRunTipHost& host_;
  MainLoop& loop_;
  SettingsManager& settings_;
  PanelAnchor& anchor_;
  bool shown_ = false;
  // The timed dismissal may outlive this object on the real loop; it holds this weakly.
  std::shared_ptr<FirstRunTipWindow*> lifetime_ = std::make_shared<FirstRunTipWindow*>(this);
};

}  // namespace quillmark
