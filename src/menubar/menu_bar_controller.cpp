#include "menubar/menu_bar_controller.h"

#include <cstdio>
#include <string>
#include <variant>

#include "base/log.h"
#include "menubar/status_text.h"

namespace quillmark {

MenuBarController::MenuBarController(Environment environment) : env_(std::move(environment)) {}

MenuBarController::~MenuBarController() {
  if (nudgeTimer_ != 0) env_.loop.cancelTimer(nudgeTimer_);
  if (modeToken_ != 0) env_.settings.menuBarMode.unsubscribe(modeToken_);
  if (netSpeedToken_ != 0) env_.settings.showNetSpeed.unsubscribe(netSpeedToken_);
  if (languageToken_ != 0) env_.l10n.language.unsubscribe(languageToken_);
  env_.monitor.onTick = nullptr;
}

void MenuBarController::setup() {
  Log::debug("setup() started");
  StatusItemHost& item = env_.statusItem;
  if (item.hasButton()) {
    Log::debug(std::string("Status item button created: ") + (item.isVisible() ? "true" : "false"));
    item.setClickHandler([weak = std::weak_ptr<MenuBarController*>(lifetime_)](StatusClick click) {
      if (auto self = weak.lock()) (*self)->statusItemClicked(click);
    });
    item.setToolTip(L(env_.l10n, "menu.tooltip"));
    applyMenuBarStyle();
  } else {
    Log::debug("⚠ Status item button is nil");
  }

  env_.loop.postAfter(kPositionLogSeconds,
                      weakly([](MenuBarController& self) { self.logStatusItemPosition(); }));
  env_.monitor.onTick = weakly([](MenuBarController& self) { self.updateStatusText(); });
  env_.monitor.start(env_.settings.refreshInterval());
  updateStatusText();
  Log::debug("setup() completed; menu bar text: " + item.title());

  modeToken_ = env_.settings.menuBarMode.subscribe([this](const MenuBarMode&) { applyMenuBarStyle(); });
  netSpeedToken_ = env_.settings.showNetSpeed.subscribe([this](const bool&) { updateStatusText(); });
  languageToken_ = env_.l10n.language.subscribe([this](const AppLanguage&) {
    env_.statusItem.setToolTip(L(env_.l10n, "menu.tooltip"));
    updateStatusText();
  });

  if (env_.startPressureMonitor) env_.startPressureMonitor();
  if (env_.activateAlerts) {
    env_.activateAlerts(
        weakly([](MenuBarController& self) { self.env_.panel.show(self.env_.statusItem.anchor()); }));
  }
  env_.loop.postAfter(kTipDelaySeconds, weakly([](MenuBarController& self) {
                        self.env_.tip.showIfNeeded(self.env_.statusItem.anchor());
                      }));
  startNudge();
}

void MenuBarController::applyMenuBarStyle() {
  StatusItemHost& item = env_.statusItem;
  if (!item.hasButton()) return;
  if (env_.settings.menuBarMode() == MenuBarMode::icon) {
    item.showIconOnly();
    const std::optional<ScreenRect> bounds = item.buttonBounds();
    Log::debug("Menu bar mode: icon only; button=" + (bounds ? describe(*bounds) : std::string("none")));
  } else {
    item.showIconWithText();
    updateStatusText();
    Log::debug("Menu bar mode: text");
  }
}

void MenuBarController::updateStatusText() {
  StatusItemHost& item = env_.statusItem;
  if (!item.hasButton() || env_.settings.menuBarMode() == MenuBarMode::icon) return;
  const Monitor& monitor = env_.monitor;
  item.setTitle(statusText(monitor.cpu(), monitor.memory(), monitor.network(), env_.settings.showNetSpeed(),
                           env_.l10n));
}

void MenuBarController::statusItemClicked(StatusClick click) {
  if (click == StatusClick::right) {
    env_.statusItem.popUpMenu(buildMenu(), [weak = std::weak_ptr<MenuBarController*>(lifetime_)](
                                               MenuAction action, const MenuValue& value) {
      if (auto self = weak.lock()) (*self)->perform(action, value);
    });
    return;
  }
  env_.panel.toggle(env_.statusItem.anchor());
}

std::vector<MenuEntry> MenuBarController::buildMenu() const {
  return quillmark::buildMenu(env_.settings, env_.skins, env_.l10n);
}

void MenuBarController::perform(MenuAction action, const MenuValue& value) {
  const std::string* raw = std::get_if<std::string>(&value);
  switch (action) {
    case MenuAction::none:
      return;
    case MenuAction::setMenuBarStyle:
      if (const auto mode = raw ? menuBarModeFromRaw(*raw) : std::nullopt) {
        env_.settings.menuBarMode.set(*mode);
        applyMenuBarStyle();
      }
      return;
    case MenuAction::toggleNetSpeed:
      env_.settings.showNetSpeed.set(!env_.settings.showNetSpeed());
      updateStatusText();
      return;
    case MenuAction::setSkin:
      if (const auto skin = raw ? panelSkinFromRaw(*raw) : std::nullopt) {
        env_.skins.skin.set(*skin);
        Log::debug("Panel skin changed: " + *raw);
      }
      return;
    case MenuAction::setInterval:
      if (const double* seconds = std::get_if<double>(&value)) env_.settings.refreshInterval.set(*seconds);
      return;
    case MenuAction::openSettings:
      // The settings are the panel's back face: open the panel and turn it over.
      if (!env_.panel.isShown()) env_.panel.show(env_.statusItem.anchor());
      env_.flip.flipped.set(true);
      return;
    case MenuAction::quitApp:
      if (env_.terminate) env_.terminate();
      return;
  }
}

void MenuBarController::startNudge() {
  if (nudgeTimer_ != 0) env_.loop.cancelTimer(nudgeTimer_);
  nudgeTimer_ = env_.loop.addRepeatingTimer(kNudgePeriodSeconds,
                                            weakly([](MenuBarController& self) { self.nudgeStatusItem(); }));
  env_.loop.postAfter(kFirstNudgeSeconds, weakly([](MenuBarController& self) { self.nudgeStatusItem(); }));
}

std::optional<ScreenRect> MenuBarController::nudgedFrame(const ScreenRect& window, const ScreenRect& screen) {
  const double limit = screen.maxX() - kNudgeDistance;
  if (window.maxX() >= limit) return std::nullopt;
  ScreenRect moved = window;
  moved.x = limit - window.width;
  return moved;
}

void MenuBarController::nudgeStatusItem() {
  StatusItemHost& item = env_.statusItem;
  if (!item.hasButton()) return;
  const std::optional<ScreenRect> frame = item.windowFrame();
  const std::optional<ScreenRect> screen = item.mainScreenFrame();
  if (!frame || !screen) return;
  if (const std::optional<ScreenRect> moved = nudgedFrame(*frame, *screen)) {
    item.setWindowFrame(*moved);
    Log::debug("nudge: " + describe(*frame) + " -> " + describe(*moved));
  }
}

void MenuBarController::logStatusItemPosition() {
  StatusItemHost& item = env_.statusItem;
  if (!item.hasButton()) {
    Log::debug("⚠ Status item button is nil");
    return;
  }
  const std::optional<ScreenRect> frame = item.windowFrame();
  if (!frame) {
    Log::debug("⚠ Status item button has no window");
    return;
  }
  const std::optional<ScreenRect> screen = item.mainScreenFrame();
  char width[32];
  std::snprintf(width, sizeof width, "%.1f", screen ? screen->width : 0.0);
  Log::debug("Status item window frame=" + describe(*frame) + " screenWidth=" + width +
             " isVisible=" + (item.isVisible() ? "true" : "false"));
}

}  // namespace quillmark
