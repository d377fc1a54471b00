#include "settings/format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <vector>

#include "base/string_format.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

// A measurement that is not a number (a broken counter) is shown as zero rather than "nan".
double finiteOrZero(double v) { return std::isfinite(v) ? v : 0.0; }

// Whole seconds truncated toward zero, kept in a range where every later division is exact.
std::int64_t wholeSeconds(double seconds) {
  if (!(seconds > 0)) return 0;
  return static_cast<std::int64_t>(std::min(seconds, 1e15));
}

std::int64_t pieceValue(std::string_view piece) {
  if (!piece.empty() && piece.front() == '+') piece.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), value);
  if (error != std::errc() || end != piece.data() + piece.size() || piece.empty()) return 0;
  return value;
}

std::vector<std::int64_t> versionPieces(std::string_view version) {
  std::vector<std::int64_t> pieces;
  while (!version.empty()) {
    const auto dot = version.find('.');
    const std::string_view piece = version.substr(0, dot);
    if (!piece.empty()) pieces.push_back(pieceValue(piece));
    if (dot == std::string_view::npos) break;
    version.remove_prefix(dot + 1);
  }
  return pieces;
}

}  // namespace

namespace Format {

std::string byteString(std::uint64_t bytes) {
  if (bytes < 1024) return std::to_string(bytes) + " B";
  static constexpr const char* kUnits[] = {"B", "KB", "MB", "GB", "TB"};
  double value = static_cast<double>(bytes) / 1024.0;
  int unit = 1;
  while (value >= 1024.0 && unit < 4) {
    value /= 1024.0;
    ++unit;
  }
  return formatString("%.1f %@", {value, kUnits[unit]});
}

std::string speedString(double v) {
  v = finiteOrZero(v);
  if (v >= 1'000'000) return formatString("%.1f MB/s", {v / 1'000'000});
  if (v >= 1000) return formatString("%.0f KB/s", {v / 1000});
  return formatString("%.0f B/s", {v});
}

std::string compactSpeed(double v) {
  v = finiteOrZero(v);
  if (v >= 1'000'000) return formatString("%.1fM", {v / 1'000'000});
  if (v >= 1000) return formatString("%.0fK", {v / 1000});
  return formatString("%.0fB", {v});
}

std::string uptime(double seconds, const L10n& l10n) {
  const std::int64_t s = wholeSeconds(seconds);
  if (s < 3600) return L(l10n, "format.uptime.minutes", s / 60, s % 60);
  if (s < 86'400) return L(l10n, "format.uptime.hours", s / 3600, (s % 3600) / 60);
  return L(l10n, "format.uptime.days", s / 86'400, (s % 86'400) / 3600);
}

std::string uptime(double seconds) { return uptime(seconds, L10n::shared()); }

namespace {

// The composite conversions spelled out, so the hour, minute and second can be found.
std::string expandTimeFormat(std::string_view format) {
  std::string out;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      out += format[i];
      continue;
    }
    const char conversion = format[++i];
    if (conversion == 'r') {
      out += "%I:%M:%S %p";
    } else if (conversion == 'T') {
      out += "%H:%M:%S";
    } else if (conversion == 'R') {
      out += "%H:%M";
    } else {
      out += '%';
      out += conversion;
    }
  }
  return out;
}

}  // namespace

std::string clockTime(const std::tm& local, std::string_view localeTimeFormat) {
  const std::string format = expandTimeFormat(localeTimeFormat);
  std::size_t hour = std::string::npos;
  for (const char* conversion : {"%H", "%k", "%I", "%l"}) {
    if (const auto at = format.find(conversion); at != std::string::npos) hour = std::min(hour, at);
  }
  const bool twelveHour = hour != std::string::npos && (format[hour + 1] == 'I' || format[hour + 1] == 'l');
  const auto minute = format.find("%M", hour == std::string::npos ? 0 : hour);
  const auto second = minute == std::string::npos ? std::string::npos : format.find("%S", minute);
  std::string_view beforeMinute = ":", beforeSecond = ":";
  if (hour != std::string::npos && second != std::string::npos) {
    beforeMinute = std::string_view(format).substr(hour + 2, minute - hour - 2);
    beforeSecond = std::string_view(format).substr(minute + 2, second - minute - 2);
  }
  int h = local.tm_hour;
  if (twelveHour) h = h % 12 == 0 ? 12 : h % 12;
  const auto twoDigits = [](int value) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%02d", value);
    return std::string(digits);
  };
  // The separators are the locale's literal text, so they are appended, never used as a format.
  return twoDigits(h) + std::string(beforeMinute) + twoDigits(local.tm_min) + std::string(beforeSecond) +
         twoDigits(local.tm_sec);
}

std::string timeFormatFromPattern(std::string_view pattern) {
  std::string out;
  bool quoted = false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (c == '\'') {
      if (i + 1 < pattern.size() && pattern[i + 1] == '\'') {
        out += '\'';
        ++i;
      } else {
        quoted = !quoted;
      }
      continue;
    }
    if (quoted) {
      out += c == '%' ? "%%" : std::string(1, c);
      continue;
    }
    // A run of one letter is one field.
    const auto field = [&](const char* conversion) {
      while (i + 1 < pattern.size() && pattern[i + 1] == c) ++i;
      out += conversion;
    };
    switch (c) {
      case 'h':
      case 'K':
        field("%I");
        break;
      case 'H':
      case 'k':
        field("%H");
        break;
      case 'm':
        field("%M");
        break;
      case 's':
        field("%S");
        break;
      case 'a':
        field("%p");
        break;
      case '%':
        out += "%%";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string currentTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return clockTime(local, systemTimeFormat());
}

}  // namespace Format

namespace ProcessDetailReader {

std::string cpuTimeString(std::uint64_t nanoseconds, const L10n& l10n) {
  const double x = static_cast<double>(nanoseconds) / 1'000'000'000.0;
  if (x < 60) return L(l10n, "format.duration.seconds", x);
  if (x < 3600) return L(l10n, "format.duration.minSec", x / 60, std::fmod(x, 60));
  const auto hours = static_cast<std::int64_t>(x / 3600);
  const auto minutes = static_cast<std::int64_t>(std::fmod(x, 3600) / 60);
  return L(l10n, "format.duration.hourMin", hours, minutes);
}

std::string cpuTimeString(std::uint64_t nanoseconds) { return cpuTimeString(nanoseconds, L10n::shared()); }

std::string relativeTime(std::optional<double> date, double now, const L10n& l10n) {
  if (!date) return "—";
  const double d = now - *date;
  if (!(d >= 60)) return l10n.string("format.relative.justNow");  // also the future and NaN
  const std::int64_t s = wholeSeconds(d);
  if (s < 3600) return L(l10n, "format.relative.minutesAgo", s / 60);
  if (s < 86'400) return L(l10n, "format.relative.hoursAgo", s / 3600);
  return L(l10n, "format.relative.daysAgo", s / 86'400);
}

std::string relativeTime(std::optional<double> date) {
  return relativeTime(date, static_cast<double>(std::time(nullptr)), L10n::shared());
}

}  // namespace ProcessDetailReader

ComparisonResult compareVersions(std::string_view a, std::string_view b) {
  const auto left = versionPieces(a);
  const auto right = versionPieces(b);
  for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
    const std::int64_t x = i < left.size() ? left[i] : 0;
    const std::int64_t y = i < right.size() ? right[i] : 0;
    if (x < y) return ComparisonResult::ascending;
    if (x > y) return ComparisonResult::descending;
  }
  return ComparisonResult::same;
}

}  // namespace quillmark
