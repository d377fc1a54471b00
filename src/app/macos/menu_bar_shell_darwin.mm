#include "app/macos/menu_bar_shell_darwin.h"

#include <AppKit/AppKit.h>

#include "app/shell/hosted_panel.h"
#include "base/clock.h"
#include "base/main_loop.h"
#include "base/shared_instance.h"
#include "insights/alert_manager.h"
#include "insights/pressure_monitor.h"
#include "settings/l10n.h"
#include "views/first_run_tip_content.h"

namespace quillmark {

MenuBarShell::MenuBarShell(AppServices& services)
    : measurer_(nullptr, Size{PanelWindowController::kWidth, PanelWindowController::kHeight}, 1, true),
      statusItem_(L10n::shared()),
      panelHost_(
          [this, &services]() -> std::unique_ptr<HostedContent> {
            return std::make_unique<HostedPanel>(
                PanelServices::sharedServices(MainLoop::main()), measurer_,
                HostedPanel::Shell{{services.panelAnchor(), services.panelFlip(), Clock::system()},
                                   [this](bool hold) { panel_.dialogHold = hold; }});
          },
          MainLoop::main()),
      panel_({panelHost_, Clock::system(), services.panelAnchor(), services.panelFlip(),
              [&services](bool paused) { services.monitor().setPublishingPaused(paused); }}),
      tipHost_(
          [&services](std::function<void()> onDismiss) -> std::unique_ptr<HostedContent> {
            return std::make_unique<FirstRunTipContent>(services.panelAnchor(), services.skins().skin(),
                                                        std::move(onDismiss));
          },
          MainLoop::main(), [this] { tip_.dismiss(); }),
      tip_(tipHost_, MainLoop::main(), services.settings(), services.panelAnchor()),
      controller_(
          {statusItem_, MainLoop::main(), services.settings(), L10n::shared(), services.skins(),
           services.monitor(), panel_, services.panelFlip(), tip_,
           // The root has started both for every program already; starting again does
           // nothing, and the alerts learn here how to open the panel.
           [] { PressureMonitor::shared().start(); },
           [](std::function<void()> openPanel) { AlertManager::shared().panelOpener = std::move(openPanel); },
           [] { [NSApp terminate:nil]; }}) {
  panelHost_.onResignKey = [this] { panel_.windowDidResignKey(); };
  panelHost_.onCancel = [this] { panel_.cancelOperation(); };
  SharedInstance<PanelWindowController>::install(&panel_);
  SharedInstance<FirstRunTipWindow>::install(&tip_);
}

MenuBarShell::~MenuBarShell() {
  SharedInstance<FirstRunTipWindow>::install(nullptr);
  SharedInstance<PanelWindowController>::install(nullptr);
}

}  // namespace quillmark
