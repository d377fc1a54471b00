#include "insights/psi_levels.h"

#include <charconv>
#include <cstdlib>
#include <string>

namespace quillmark {
namespace {

std::optional<double> parseDouble(std::string_view text) {
  // strtod needs a terminated string; the fields are short.
  const std::string copy(text);
  char* end = nullptr;
  const double value = std::strtod(copy.c_str(), &end);
  if (copy.empty() || end != copy.c_str() + copy.size() || !(value >= 0)) return std::nullopt;
  return value;
}

// "avg10=1.23 avg60=0.50 avg300=0.10 total=12345" (the part after "some " or "full ").
std::optional<PsiLine> parseLine(std::string_view fields) {
  PsiLine line;
  int seen = 0;
  while (!fields.empty()) {
    const std::size_t space = fields.find(' ');
    const std::string_view field = fields.substr(0, space);
    fields = space == std::string_view::npos ? std::string_view{} : fields.substr(space + 1);
    const std::size_t eq = field.find('=');
    if (eq == std::string_view::npos) continue;
    const std::string_view key = field.substr(0, eq);
    const std::string_view value = field.substr(eq + 1);
    if (key == "total") {
      const auto [ptr, ec] = std::from_chars(value.data(), value.data() + value.size(), line.total);
      if (ec != std::errc{} || ptr != value.data() + value.size()) return std::nullopt;
      seen |= 8;
      continue;
    }
    double* target = key == "avg10"    ? &line.avg10
                     : key == "avg60"  ? &line.avg60
                     : key == "avg300" ? &line.avg300
                                       : nullptr;
    if (!target) continue;
    const auto parsed = parseDouble(value);
    if (!parsed) return std::nullopt;
    *target = *parsed;
    seen |= key == "avg10" ? 1 : key == "avg60" ? 2 : 4;
  }
  // avg10 is what the rules read; the rest may be missing on an odd kernel.
  if (!(seen & 1)) return std::nullopt;
  return line;
}

PressureLevel levelAt(const PsiReading& reading, double percent) {
  if (reading.full && reading.full->avg10 >= percent) return PressureLevel::critical;
  if (reading.some.avg10 >= percent) return PressureLevel::warning;
  return PressureLevel::normal;
}

}  // namespace

std::optional<PsiReading> parsePsi(std::string_view text) {
  std::optional<PsiLine> some;
  std::optional<PsiLine> full;
  while (!text.empty()) {
    const std::size_t newline = text.find('\n');
    std::string_view line = text.substr(0, newline);
    text = newline == std::string_view::npos ? std::string_view{} : text.substr(newline + 1);
    if (line.starts_with("some "))
      some = parseLine(line.substr(5));
    else if (line.starts_with("full "))
      full = parseLine(line.substr(5));
  }
  if (!some) return std::nullopt;
  return PsiReading{*some, full};
}

PressureLevel PsiLevelRules::feed(double now, const PsiReading& reading) {
  const PressureLevel entered = levelAt(reading, kEnterPercent);
  const PressureLevel held = levelAt(reading, kHoldPercent);
  calm_ = held == PressureLevel::normal;
  if (entered > level_) {
    level_ = entered;
    calmSince_.reset();
  } else if (held >= level_) {
    calmSince_.reset();
  } else if (!calmSince_) {
    calmSince_ = now;
  } else if (now - *calmSince_ >= kCalmSeconds) {
    // Falls to what the readings still hold up, which may skip warning on the way to normal.
    level_ = held;
    calmSince_.reset();
  }
  return level_;
}

}  // namespace quillmark
