#pragma once

#include <functional>
#include <memory>

#include "app/desktop/gtk_panel_host_linux.h"
#include "app/desktop/gtk_tip_host_linux.h"
#include "app/desktop/tray_status_item_host_linux.h"
#include "app/services/app_services.h"
#include "base/linux_main_loop.h"
#include "menubar/first_run_tip_window.h"
#include "menubar/menu_bar_controller.h"
#include "menubar/panel_window_controller.h"
#include "views/canvas_cairo.h"
#include "views/image_loader.h"
#include "views/process_icons.h"

namespace quillmark {

// The desktop program's shell on GTK: the menu-bar controller over the tray item, the panel and
// first-run windows, wired to the services. setup() puts the item on the bus and shows the rest;
// trayShown reports (soon, and on every change) whether any tray host shows the item.
// Build after the services and GTK; destroy before the services. Main thread only.
class DesktopShell {
 public:
  DesktopShell(AppServices& services, LinuxMainLoop& loop);
  ~DesktopShell();
  DesktopShell(const DesktopShell&) = delete;
  DesktopShell& operator=(const DesktopShell&) = delete;

  void setup();
  // The scripting interface's OpenPanel: shows the panel where a tray click would.
  void openPanel();
  [[nodiscard]] PanelWindowController& panel() { return panel_; }

  std::function<void(bool shown)> trayShown;

 private:
  LinuxMainLoop& loop_;
  // Layout measures text between paints; measurements do not depend on the scale.
  std::unique_ptr<CairoCanvas> measurer_ = CairoCanvas::offscreen({1, 1}, 1);
  std::unique_ptr<ImageLoader> imageLoader_ = ImageLoader::makePlatform();
  // Kept for the program's life: the panel is rebuilt on every opening, the icons need not be.
  ProcessIconCache icons_;
  MenuBarController* controller_ = nullptr;  // set once built; the tray asks only after setup()
  TrayStatusItemHost statusItem_;
  GtkPanelWindowHost panelHost_;
  PanelWindowController panel_;
  GtkFirstRunTipHost tipHost_;
  FirstRunTipWindow tip_;
  MenuBarController menuBar_;
};

}  // namespace quillmark
