#pragma once

#include <functional>
#include <memory>

#include "app/desktop/gtk_card_window_linux.h"
#include "base/main_loop.h"
#include "menubar/panel_anchor.h"
#include "menubar/panel_window_controller.h"

namespace quillmark {

// ScreenRect space (y up) and GDK's root coordinates (y down) differ only in the sign of y: a
// point's y is the negated GDK y. Nothing needs the screen's height.
[[nodiscard]] inline double toScreenY(double gdkY) { return -gdkY; }
[[nodiscard]] inline double toGdkTop(const ScreenPoint& lowerLeft, double height) {
  return -(lowerLeft.y + height);
}

// The panel's window on Linux: a focus-taking GtkCardWindow whose content is made afresh for every
// opening and released on every close. Where the screen has no compositor the window is shaped
// to the card, so it is reshaped whenever the anchor's arrow moves (also to the bottom edge). The
// controller's handlers (focus lost, unused Escape) are set once the controller exists. Main
// thread only; the anchor must outlive the host.
class GtkPanelWindowHost final : public PanelWindowHost {
 public:
  using ContentFactory = std::function<std::unique_ptr<HostedContent>()>;

  GtkPanelWindowHost(ContentFactory makeContent, PanelAnchor& anchor, MainLoop& loop);
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
  void unsubscribe();

  ContentFactory makeContent_;
  PanelAnchor& anchor_;
  MainLoop& loop_;
  std::unique_ptr<Open> open_;
  std::shared_ptr<GtkPanelWindowHost*> lifetime_ = std::make_shared<GtkPanelWindowHost*>(this);
};

}  // namespace quillmark
