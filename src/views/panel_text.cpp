#include "views/panel_text.h"

#include <cmath>

#include "settings/format.h"
#include "settings/l10n.h"

namespace quillmark::PanelText {

std::string noValue() { return L("panel.noValue"); }

std::string percent(std::optional<double> value) {
  if (!value || !std::isfinite(*value)) return noValue();
  return L("panel.percent", *value);
}

std::string bytes(std::optional<std::uint64_t> value) {
  return value ? Format::byteString(*value) : noValue();
}

std::string rate(std::optional<double> bytesPerSecond) {
  if (!bytesPerSecond || !std::isfinite(*bytesPerSecond)) return noValue();
  return Format::speedString(*bytesPerSecond);
}

std::string temperature(std::optional<double> celsius, TempUnit unit) {
  if (!celsius || !std::isfinite(*celsius)) return noValue();
  return std::to_string(display(unit, *celsius)) + std::string(symbol(unit));
}

std::string rpm(std::optional<double> value) {
  if (!value || !std::isfinite(*value)) return noValue();
  return L("panel.rpm", static_cast<int>(std::lround(*value)));
}

}  // namespace quillmark::PanelText
