#pragma once

#include "app/services/app_services.h"
#include "menubar/first_run_tip_host_darwin.h"
#include "menubar/first_run_tip_window.h"
#include "menubar/menu_bar_controller.h"
#include "menubar/panel_window_controller.h"
#include "menubar/panel_window_host_darwin.h"
#include "menubar/status_item_host_darwin.h"
#include "views/canvas_darwin.h"

namespace quillmark {

// The menu-bar shell of the macOS app, wired to the services of the composition root: the status
// item, the panel and the first-run card with their AppKit windows, and the controller that runs
// them. The panel's content (HostedPanel) is made afresh on every opening and laid out with one
// measuring canvas for the whole run. Building it installs PanelWindowController::shared() and
// FirstRunTipWindow::shared(); setup() is the controller's. Lives from the end of launching to termination.
// Main thread only.
class MenuBarShell {
 public:
  explicit MenuBarShell(AppServices& services);
  ~MenuBarShell();
  MenuBarShell(const MenuBarShell&) = delete;
  MenuBarShell& operator=(const MenuBarShell&) = delete;

  [[nodiscard]] MenuBarController& controller() { return controller_; }

 private:
  CoreGraphicsCanvas measurer_;
  DarwinStatusItemHost statusItem_;
  DarwinPanelWindowHost panelHost_;
  PanelWindowController panel_;
  DarwinFirstRunTipHost tipHost_;
  FirstRunTipWindow tip_;
  MenuBarController controller_;
};

}  // namespace quillmark
