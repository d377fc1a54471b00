#include <algorithm>
#include <cmath>

#include "settings/l10n.h"
#include "views/face_parts.h"
#include "views/faces.h"
#include "views/panel_text.h"

namespace quillmark {
namespace {

using FaceParts::text;

Card& section(View& body, const Theme& t, const char* titleKey, std::string id) {
  auto& card = body.make<Card>(t);
  card.id = std::move(id);
  text(card, t, L(titleKey), t.bodySize + 1.5, t.text, FontWeight::bold);
  return card;
}

// A line with a title and a control at its trailing edge.
template <class T, class... Args>
T& controlRow(View& into, const Theme& t, std::string title, double controlWidth, Args&&... args) {
  auto& line = into.make<HStack>(8);
  text(line, t, std::move(title), t.bodySize, t.text, FontWeight::regular, Label::Overflow::wrap);
  auto& control = line.make<T>(std::forward<Args>(args)...);
  control.fixedWidth = controlWidth;
  return control;
}

void caption(View& into, const Theme& t, std::string s) {
  text(into, t, std::move(s), t.captionSize, t.secondaryText, FontWeight::regular, Label::Overflow::wrap);
}

// A picker under its title, for choices too wide to share a line.
template <class E, std::size_t N>
void picker(View& into, FaceContext& ctx, const char* titleKey, const std::array<E, N>& cases, E current,
            std::function<std::string(E)> name, std::function<void(E)> set, std::string id, int columns = 0) {
  text(into, ctx.theme, L(titleKey), ctx.theme.bodySize, ctx.theme.text);
  std::vector<std::string> names;
  for (E c : cases) names.push_back(name(c));
  const int selected = static_cast<int>(std::find(cases.begin(), cases.end(), current) - cases.begin());
  into.make<SegmentedPicker>(
          ctx.theme, std::move(names), selected, [cases, set](int i) { set(cases[i]); }, columns)
      .id = std::move(id);
}

void general(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = section(body, t, "settings.section.general", "general");
  static constexpr std::array<double, 3> kIntervals = {1, 2, 5};
  picker<double>(
      card, ctx, "settings.interval", kIntervals, m.refreshInterval,
      [](double s) { return L("settings.interval.value", s); },
      [&ctx](double s) { ctx.actions.setRefreshInterval(s); }, "interval");
  picker<AppLanguage>(
      card, ctx, "settings.language", kAllAppLanguages, m.language,
      [](AppLanguage l) { return L(displayNameKey(l)); },
      [&ctx](AppLanguage l) { ctx.actions.setLanguage(l); }, "language", 2);
  controlRow<Toggle>(card, t, L("settings.launchAtLogin"), 40, t, m.launchAtLogin, [&ctx](bool on) {
    ctx.actions.setLaunchAtLogin(on);
  }).id = "launchAtLogin";
  picker<PanelSkin>(
      card, ctx, "menu.skin", kAllPanelSkins, m.skin, [](PanelSkin s) { return displayName(s); },
      [&ctx](PanelSkin s) { ctx.actions.setSkin(s); }, "skin");
  picker<TempUnit>(
      card, ctx, "settings.tempunit", kAllTempUnits, m.tempUnit,
      [](TempUnit u) {
        return L(u == TempUnit::celsius ? "settings.tempunit.celsius.display"
                                        : "settings.tempunit.fahrenheit.display");
      },
      [&ctx](TempUnit u) { ctx.actions.setTempUnit(u); }, "tempUnit");
}

void menuBar(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  auto& card = section(body, t, "settings.section.menubar", "menubar");
  picker<MenuBarMode>(
      card, ctx, "settings.menubar.mode", kAllMenuBarModes, ctx.model.menuBarMode,
      [](MenuBarMode mode) {
        return L(mode == MenuBarMode::icon ? "settings.menubar.icon" : "settings.menubar.text");
      },
      [&ctx](MenuBarMode mode) { ctx.actions.setMenuBarMode(mode); }, "menuBarMode");
  controlRow<Toggle>(card, t, L("settings.menubar.netspeed"), 40, t, ctx.model.showNetSpeed, [&ctx](bool on) {
    ctx.actions.setShowNetSpeed(on);
  }).id = "netSpeed";
  caption(card, t, L("settings.menubar.netspeed.hint"));
}

void modules(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  auto& card = section(body, t, "settings.modules", "modules");
  for (PanelModule module : kAllPanelModules) {
    controlRow<Toggle>(card, t, displayName(module), 40, t, ctx.model.shows(module), [&ctx, module](bool on) {
      ctx.actions.setModuleVisible(module, on);
    }).id = "module:" + std::string(rawValue(module));
  }
  caption(card, t, L("settings.modules.cpuNote"));
}

void alerts(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = section(body, t, "settings.section.alerts", "alerts");
  controlRow<Toggle>(card, t, L("settings.alerts.enable"), 40, t, m.alertsEnabled, [&ctx](bool on) {
    ctx.actions.setAlertsEnabled(on);
  }).id = "alertsEnabled";
  const auto percent = [](double v) { return PanelText::percent(v); };
  controlRow<Stepper>(card, t, L("settings.alerts.cpu"), 128, t, m.cpuAlarmThreshold, 50, 100, 5, percent,
                      [&ctx](double v) { ctx.actions.setCpuAlarmThreshold(v); })
      .id = "cpuThreshold";
  controlRow<Stepper>(card, t, L("settings.alerts.memory"), 128, t, m.memAlarmThreshold, 50, 100, 5, percent,
                      [&ctx](double v) { ctx.actions.setMemAlarmThreshold(v); })
      .id = "memThreshold";
  controlRow<Stepper>(
      card, t, L("settings.alerts.temp"), 128, t, m.tempAlarmThreshold, 60, 105, 5,
      [unit = m.tempUnit](double c) { return PanelText::temperature(c, unit); },
      [&ctx](double v) { ctx.actions.setTempAlarmThreshold(v); })
      .id = "tempThreshold";
}

std::string comfortStatusText(const PanelModel& m) {
  using S = PanelModel::ComfortStatus;
  const auto rpm = m.fanRPM ? std::optional(static_cast<int>(std::lround(*m.fanRPM))) : std::nullopt;
  switch (m.comfortStatus) {
    case S::off:
      return L("settings.comfort.status.off");
    case S::needsApproval:
      return L("settings.comfort.status.needsApproval");
    case S::active:
      return rpm ? L("settings.comfort.status.activeWithFan", *rpm) : L("settings.comfort.status.active");
    case S::cooling:
      return rpm ? L("settings.comfort.status.comfortableWithFan", *rpm)
                 : L("settings.comfort.status.comfortable");
    case S::unavailable:
      return L("settings.comfort.status.unavailable");
  }
  return {};
}

void comfort(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = section(body, t, "settings.section.comfort", "comfort");
  controlRow<Toggle>(card, t, L("settings.comfort.enable"), 40, t, m.comfortEnabled, [&ctx](bool on) {
    ctx.actions.setComfortEnabled(on);
  }).id = "comfortEnabled";
  caption(card, t, L("settings.comfort.note"));
  controlRow<Stepper>(
      card, t, L("settings.comfort.target"), 128, t, m.comfortTargetC, 35, 42, 1,
      [unit = m.tempUnit](double c) { return PanelText::temperature(c, unit); },
      [&ctx](double v) { ctx.actions.setComfortTarget(v); })
      .id = "comfortTarget";
  auto& status =
      text(card, t, comfortStatusText(m), t.bodySize, t.accent, FontWeight::medium, Label::Overflow::wrap);
  status.id = "comfortStatus";
  FaceParts::row(card, t, L("glass.temp.surface"), PanelText::temperature(m.surfaceC, m.tempUnit));
  if (m.comfortStatus == PanelModel::ComfortStatus::needsApproval) {
    card.make<Button>(t, L("settings.comfort.approve"), [&ctx] { ctx.actions.retryAfterApproval(); }).id =
        "approve";
  }
}

void preauthorized(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  auto& card = section(body, t, "settings.section.preauth", "preauth");
  caption(card, t, L("settings.preauth.hint"));
  if (ctx.model.killWhitelist.empty()) caption(card, t, L("settings.preauth.empty"));
  for (const auto& name : ctx.model.killWhitelist) {
    auto& line = card.make<HStack>(8);
    text(line, t, name, t.bodySize, t.text, FontWeight::regular, Label::Overflow::ellipsize);
    auto& remove = line.make<Button>(t, L("settings.preauth.remove"),
                                     [&ctx, name] { ctx.actions.removePreauthorized(name); });
    remove.fixedWidth = 110;
    remove.id = "remove:" + name;
  }
}

}  // namespace

std::unique_ptr<View> buildSettingsFace(FaceContext& ctx, Size size) {
  auto frame = makeFaceFrame(ctx, size, L("settings.title"), {}, true);
  View& body = *frame.body;
  general(body, ctx);
  menuBar(body, ctx);
  modules(body, ctx);
  alerts(body, ctx);
  comfort(body, ctx);
  preauthorized(body, ctx);
  return std::move(frame.face);
}

}  // namespace quillmark
