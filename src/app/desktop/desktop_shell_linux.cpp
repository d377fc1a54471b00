#include "app/desktop/desktop_shell_linux.h"

#include "app/desktop/first_run_tip_card.h"
#include "app/desktop/gtk_screens_linux.h"
#include "base/clock.h"
#include "base/log.h"
#include "insights/alert_manager.h"
#include "insights/pressure_monitor.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

PanelServices::Services panelServices(AppServices& s, LinuxMainLoop& loop) {
  return {loop,
          s.monitor(),
          s.settings(),
          L10n::shared(),
          s.pauseManager(),
          ProcessTerminator::shared(),
          s.pins(),
          &s.skins(),
          &InsightEngine::shared(),
          &s.fanController(),
          &HistoryStore::shared(),
          &HistoryWindowState::shared()};
}

}  // namespace

DesktopShell::DesktopShell(AppServices& services, LinuxMainLoop& loop)
    : loop_(loop),
      statusItem_(gtkTrayAnchor),
      panelHost_(panelServices(services, loop), services.panelAnchor(), services.panelFlip(), loop),
      panel_({panelHost_, Clock::system(), services.panelAnchor(), services.panelFlip(),
              [&services](bool paused) { services.monitor().setPublishingPaused(paused); }}),
      tipHost_(
          [&services](std::function<void()> onDismiss) {
            return std::make_unique<FirstRunTipCard>(services.panelAnchor(), L10n::shared(),
                                                     std::move(onDismiss));
          },
          loop, [this] { tip_.dismiss(); }),
      tip_(tipHost_, loop, services.settings(), services.panelAnchor()),
      controller_(
          {statusItem_, loop, services.settings(), L10n::shared(), services.skins(), services.monitor(),
           panel_, services.panelFlip(), tip_,
           // The root has started both already; starting again does nothing, and the
           // alerts learn here how to open the panel.
           [] { PressureMonitor::shared().start(); },
           [](std::function<void()> openPanel) { AlertManager::shared().panelOpener = std::move(openPanel); },
           [&loop] { loop.quit(); }}) {
  panelHost_.onResignKey = [this] { panel_.windowDidResignKey(); };
  panelHost_.onCancel = [this] { panel_.cancelOperation(); };
  statusItem_.buildMenu = [this] { return controller_.buildMenu(); };
  statusItem_.perform = [this](MenuAction action, const MenuValue& value) {
    controller_.perform(action, value);
  };
  statusItem_.onTrayHostChanged = [this](bool present) {
    Log::debug(std::string("Tray host ") + (present ? "present" : "absent"));
    if (trayHostChanged) trayHostChanged(present);
  };
  SharedInstance<PanelWindowController>::install(&panel_);
  SharedInstance<FirstRunTipWindow>::install(&tip_);
}

DesktopShell::~DesktopShell() {
  statusItem_.attach(nullptr);
  tray_.reset();
  panel_.close();
  tip_.dismiss();
  SharedInstance<FirstRunTipWindow>::install(nullptr);
  SharedInstance<PanelWindowController>::install(nullptr);
}

void DesktopShell::setup() {
  controller_.setup();
  std::string error;
  tray_ = makeTrayItem(loop_, statusItem_, error);
  statusItem_.attach(tray_.get());
  if (!tray_) {
    Log::debug("No tray item: " + error);
    // Reported like a tray that no host shows, from the loop as a tray item would report it.
    loop_.post([this] { statusItem_.trayHostChanged(false); });
  }
}

void DesktopShell::openPanel() { panel_.show(statusItem_.anchor()); }

}  // namespace quillmark
