#include "settings/settings_types.h"

#include <cmath>
#include <limits>

#include "settings/l10n.h"

namespace quillmark {
namespace {

constexpr std::array<std::string_view, 2> kMenuBarModeRaw = {"icon", "text"};
constexpr std::array<std::string_view, 2> kTempUnitRaw = {"celsius", "fahrenheit"};
constexpr std::array<std::string_view, 6> kPanelModuleRaw = {"gpu",     "memory", "network",
                                                             "thermal", "power",  "processes"};
constexpr std::array<std::string_view, 2> kPanelSkinRaw = {"glass", "vitals"};

template <class Enum, std::size_t N>
std::optional<Enum> fromRaw(const std::array<std::string_view, N>& names, std::string_view raw) {
  for (std::size_t i = 0; i < N; ++i) {
    if (names[i] == raw) return static_cast<Enum>(i);
  }
  return std::nullopt;
}

}  // namespace

std::string_view rawValue(MenuBarMode mode) { return kMenuBarModeRaw[static_cast<std::size_t>(mode)]; }
std::string_view rawValue(TempUnit unit) { return kTempUnitRaw[static_cast<std::size_t>(unit)]; }
std::string_view rawValue(PanelModule module) { return kPanelModuleRaw[static_cast<std::size_t>(module)]; }
std::string_view rawValue(PanelSkin skin) { return kPanelSkinRaw[static_cast<std::size_t>(skin)]; }

std::optional<MenuBarMode> menuBarModeFromRaw(std::string_view raw) {
  return fromRaw<MenuBarMode>(kMenuBarModeRaw, raw);
}
std::optional<TempUnit> tempUnitFromRaw(std::string_view raw) { return fromRaw<TempUnit>(kTempUnitRaw, raw); }
std::optional<PanelModule> panelModuleFromRaw(std::string_view raw) {
  return fromRaw<PanelModule>(kPanelModuleRaw, raw);
}
std::optional<PanelSkin> panelSkinFromRaw(std::string_view raw) {
  return fromRaw<PanelSkin>(kPanelSkinRaw, raw);
}

std::string displayName(MenuBarMode mode, const L10n& l10n) {
  return l10n.string(mode == MenuBarMode::icon ? "settings.menubar.icon" : "settings.menubar.text");
}
std::string displayName(TempUnit unit, const L10n& l10n) {
  return l10n.string(unit == TempUnit::celsius ? "settings.tempunit.celsius.display"
                                               : "settings.tempunit.fahrenheit.display");
}
std::string displayName(PanelModule module, const L10n& l10n) {
  return l10n.string("settings.module." + std::string(rawValue(module)));
}
std::string displayName(PanelSkin skin, const L10n& l10n) {
  return l10n.string("skin." + std::string(rawValue(skin)));
}
std::string displayName(MenuBarMode mode) { return displayName(mode, L10n::shared()); }
std::string displayName(TempUnit unit) { return displayName(unit, L10n::shared()); }
std::string displayName(PanelModule module) { return displayName(module, L10n::shared()); }
std::string displayName(PanelSkin skin) { return displayName(skin, L10n::shared()); }

int display(TempUnit unit, double celsius) {
  const double value = unit == TempUnit::celsius ? celsius : celsius * 9.0 / 5.0 + 32.0;
  const double rounded = std::round(value);  // halves away from zero
  // A broken sensor may report anything; never convert an unrepresentable double to int.
  if (!(std::fabs(rounded) <= static_cast<double>(std::numeric_limits<int>::max()))) return 0;
  return static_cast<int>(rounded);
}

std::string_view symbol(TempUnit unit) { return unit == TempUnit::celsius ? "°" : "°F"; }

}  // namespace quillmark
