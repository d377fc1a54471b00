#include "app/desktop/desktop_shell_linux.h"

#include "app/desktop/gtk_popup_menu_linux.h"
#include "app/desktop/gtk_screens_linux.h"
#include "app/shell/hosted_panel.h"
#include "base/clock.h"
#include "base/log.h"
#include "insights/alert_manager.h"
#include "insights/pressure_monitor.h"
#include "processes/process_visual_cache.h"
#include "settings/l10n.h"
#include "views/first_run_tip_content.h"

namespace quillmark {

DesktopShell::DesktopShell(AppServices& services, LinuxMainLoop& loop)
    : loop_(loop),
      icons_(ProcessVisualCache::shared(), *imageLoader_),
      statusItem_({loop, services.monitor(), services.settings(), L10n::shared(),
                   [this] { return controller_ ? controller_->buildMenu() : std::vector<MenuEntry>{}; },
                   [this](MenuAction action, const MenuValue& value) {
                     if (controller_) controller_->perform(action, value);
                   },
                   gtkTrayAnchor,
                   gtkPopUpMenu,  // for hosts that call ContextMenu instead of drawing the dbusmenu
                   [this](bool shown) {
                     Log::debug(std::string("Tray host ") + (shown ? "present" : "absent"));
                     if (trayShown) trayShown(shown);
                   }}),
      panelHost_(
          [this, &services]() -> std::unique_ptr<HostedContent> {
            return std::make_unique<HostedPanel>(
                PanelServices::sharedServices(loop_, &icons_), *measurer_,
                HostedPanel::Shell{{services.panelAnchor(), services.panelFlip(), Clock::system()},
                                   [this](bool hold) { panel_.dialogHold = hold; }});
          },
          services.panelAnchor(), loop),
      panel_({panelHost_, Clock::system(), services.panelAnchor(), services.panelFlip(),
              [&services](bool paused) { services.monitor().setPublishingPaused(paused); }}),
      tipHost_(
          [&services](std::function<void()> onDismiss) -> std::unique_ptr<HostedContent> {
            return std::make_unique<FirstRunTipContent>(services.panelAnchor(), services.skins().skin(),
                                                        std::move(onDismiss));
          },
          loop, [this] { tip_.dismiss(); }),
      tip_(tipHost_, loop, services.settings(), services.panelAnchor()),
      menuBar_(
          {statusItem_, loop, services.settings(), L10n::shared(), services.skins(), services.monitor(),
           panel_, services.panelFlip(), tip_,
           // The root has started both already; starting again does nothing, and the
           // alerts learn here how to open the panel.
           [] { PressureMonitor::shared().start(); },
           [](std::function<void()> openPanel) { AlertManager::shared().panelOpener = std::move(openPanel); },
           [&loop] { loop.quit(); }}) {
  controller_ = &menuBar_;
  panelHost_.onResignKey = [this] { panel_.windowDidResignKey(); };
  panelHost_.onCancel = [this] { panel_.cancelOperation(); };
  SharedInstance<PanelWindowController>::install(&panel_);
  SharedInstance<FirstRunTipWindow>::install(&tip_);
}

DesktopShell::~DesktopShell() {
  panel_.close();
  tip_.dismiss();
  SharedInstance<FirstRunTipWindow>::install(nullptr);
  SharedInstance<PanelWindowController>::install(nullptr);
}

void DesktopShell::setup() {
  std::string error;
  if (!statusItem_.start(error)) {
    Log::debug("No tray item: " + error);
    // Reported like a tray that no host shows, from the loop as the item would report it.
    loop_.post([this] {
      if (trayShown) trayShown(false);
    });
  }
  menuBar_.setup();
}

void DesktopShell::openPanel() { panel_.show(statusItem_.anchor()); }

}  // namespace quillmark
