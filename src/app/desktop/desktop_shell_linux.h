#pragma once

#include <memory>

#include "app/desktop/desktop_status_item.h"
#include "app/desktop/gtk_panel_host_linux.h"
#include "app/desktop/gtk_tip_host_linux.h"
#include "app/services/app_services.h"
#include "base/linux_main_loop.h"
#include "menubar/first_run_tip_window.h"
#include "menubar/menu_bar_controller.h"
#include "menubar/panel_window_controller.h"

namespace quillmark {

// The desktop program's shell on GTK: the menu-bar controller over a tray item, the panel and
// first-run windows, wired to the services. setup() shows everything; the tray item is made
// there too, and trayHostChanged reports (soon, and on every change) whether any tray shows it.
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

  std::function<void(bool present)> trayHostChanged;

 private:
  LinuxMainLoop& loop_;
  DesktopStatusItem statusItem_;
  GtkPanelWindowHost panelHost_;
  PanelWindowController panel_;
  GtkFirstRunTipHost tipHost_;
  FirstRunTipWindow tip_;
  MenuBarController controller_;
  std::unique_ptr<TrayItem> tray_;
};

}  // namespace quillmark
