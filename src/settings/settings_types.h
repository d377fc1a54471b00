#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

class L10n;

// The enumerations of the settings. Raw values are the stored strings; the arrays list the cases
// in declaration order, which is also the order the settings views show them in.

// What the status item shows: the drawn icon alone, or the icon with the live usage text.
enum class MenuBarMode { icon, text };
inline constexpr std::array<MenuBarMode, 2> kAllMenuBarModes = {MenuBarMode::icon, MenuBarMode::text};

// The unit temperatures are shown in; values are kept in °C everywhere else.
enum class TempUnit { celsius, fahrenheit };
inline constexpr std::array<TempUnit, 2> kAllTempUnits = {TempUnit::celsius, TempUnit::fahrenheit};

// The optional sections of the panel (CPU is always shown).
enum class PanelModule { gpu, memory, network, thermal, power, processes };
inline constexpr std::array<PanelModule, 6> kAllPanelModules = {PanelModule::gpu,     PanelModule::memory,
                                                                PanelModule::network, PanelModule::thermal,
                                                                PanelModule::power,   PanelModule::processes};

// The panel's two looks; kept by the skin manager under "panelSkin".
enum class PanelSkin { glass, vitals };
inline constexpr std::array<PanelSkin, 2> kAllPanelSkins = {PanelSkin::glass, PanelSkin::vitals};

[[nodiscard]] std::string_view rawValue(MenuBarMode mode);
[[nodiscard]] std::string_view rawValue(TempUnit unit);
[[nodiscard]] std::string_view rawValue(PanelModule module);
[[nodiscard]] std::string_view rawValue(PanelSkin skin);

// Absent for a string that is no raw value of the type.
[[nodiscard]] std::optional<MenuBarMode> menuBarModeFromRaw(std::string_view raw);
[[nodiscard]] std::optional<TempUnit> tempUnitFromRaw(std::string_view raw);
[[nodiscard]] std::optional<PanelModule> panelModuleFromRaw(std::string_view raw);
[[nodiscard]] std::optional<PanelSkin> panelSkinFromRaw(std::string_view raw);

// The localized names for pickers and menus, looked up in l10n (default: the shared one).
[[nodiscard]] std::string displayName(MenuBarMode mode);
[[nodiscard]] std::string displayName(TempUnit unit);
[[nodiscard]] std::string displayName(PanelModule module);
[[nodiscard]] std::string displayName(PanelSkin skin);
[[nodiscard]] std::string displayName(MenuBarMode mode, const L10n& l10n);
[[nodiscard]] std::string displayName(TempUnit unit, const L10n& l10n);
[[nodiscard]] std::string displayName(PanelModule module, const L10n& l10n);
[[nodiscard]] std::string displayName(PanelSkin skin, const L10n& l10n);

// A temperature in °C as the whole number shown in unit: rounded to the nearest integer, halves
// away from zero (Fahrenheit converted first). Views print it followed by symbol(unit).
[[nodiscard]] int display(TempUnit unit, double celsius);
// "°" for Celsius (the unmarked default) and "°F" for Fahrenheit.
[[nodiscard]] std::string_view symbol(TempUnit unit);

}  // namespace quillmark
