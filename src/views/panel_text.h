#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "settings/settings_types.h"

namespace quillmark {

// The figures as the panel prints them, through the string tables and Format; an absent value is
// the localised "no value", never a zero. Any thread (they read the shared L10n).
namespace PanelText {

[[nodiscard]] std::string noValue();
[[nodiscard]] std::string percent(std::optional<double> value);
[[nodiscard]] std::string bytes(std::optional<std::uint64_t> value);
[[nodiscard]] std::string rate(std::optional<double> bytesPerSecond);
[[nodiscard]] std::string temperature(std::optional<double> celsius, TempUnit unit);
[[nodiscard]] std::string rpm(std::optional<double> value);

}  // namespace PanelText
}  // namespace quillmark
