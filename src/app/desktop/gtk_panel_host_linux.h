#pragma once

#include <functional>
#include <memory>

#include "app/desktop/gtk_card_window_linux.h"
#include "base/main_loop.h"
#include "menubar/panel_anchor.h"
#include "menubar/panel_flip_state.h"
#include "menubar/panel_window_controller.h"
#include "views/canvas_cairo.h"
#include "views/panel_content.h"
#include "views/panel_services.h"

namespace quillmark {

// ScreenRect space (y up) and GDK's root coordinates (y down) differ only in the sign of y: a
// point's y is the negated GDK y. Nothing needs the screen's height.
[[nodiscard]] inline double toScreenY(double gdkY) { return -gdkY; }
[[nodiscard]] inline double toGdkTop(const ScreenPoint& lowerLeft, double height) {
  return -(lowerLeft.y + height);
}

// The panel's window on Linux: a focus-taking GtkCardWindow whose content, the panel's views over
// the real services, is made afresh for every opening and released on every close. The arrow
// follows the shared anchor (also when it moves below the card), the menu's "Settings" turns the
// card over, and the card turns at the frame rate only while it is turning. The controller's
// handlers (focus lost, unused Escape) are set once it exists. Main thread only.
class GtkPanelWindowHost final : public PanelWindowHost {
 public:
  GtkPanelWindowHost(PanelServices::Services services, PanelAnchor& anchor, PanelFlipState& flip,
                     MainLoop& loop);
  ~GtkPanelWindowHost() override;
  GtkPanelWindowHost(const GtkPanelWindowHost&) = delete;
  GtkPanelWindowHost& operator=(const GtkPanelWindowHost&) = delete;

  std::function<void()> onResignKey;
  std::function<void()> onCancel;

  void build() override;
  [[nodiscard]] bool isVisible() const override;
  void moveTo(ScreenPoint origin) override;
  void makeKeyAndOrderFront() override;
  void destroy() override;

 private:
  struct Open;
  PanelServices::Services services_;
  PanelAnchor& anchor_;
  PanelFlipState& flip_;
  MainLoop& loop_;
  // Layout measures text between paints; measurements do not depend on the scale.
  std::unique_ptr<CairoCanvas> measurer_ = CairoCanvas::offscreen({1, 1}, 1);
  std::unique_ptr<Open> open_;
  std::shared_ptr<GtkPanelWindowHost*> lifetime_ = std::make_shared<GtkPanelWindowHost*>(this);
};

}  // namespace quillmark
