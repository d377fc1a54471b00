#include "base/string_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace quillmark {
namespace {

constexpr int kMaxWidth = 256;
constexpr int kMaxPrecision = 64;
constexpr int kMaxPosition = 9999;

struct Placeholder {
  int position = 0;  // 1-based; 0 = plain
  bool leftAlign = false;
  bool plus = false;
  bool space = false;
  bool zeroPad = false;
  bool alternate = false;
  int width = 0;
  std::optional<int> precision;
  char conversion = 0;
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads a run of digits, saturating at cap so a hostile "%99999999999d" cannot overflow.
int readNumber(std::string_view s, std::size_t& i, int cap) {
  int n = 0;
  while (i < s.size() && isDigit(s[i])) {
    n = std::min(cap + 1, n * 10 + (s[i] - '0'));
    ++i;
  }
  return n;
}

// The C library's toupper would consult the global locale.
void upperCaseAscii(std::string& text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; });
}

// Parses the placeholder that starts after the '%' at index i. On success i is just past it.
std::optional<Placeholder> parsePlaceholder(std::string_view f, std::size_t& i) {
  Placeholder ph;
  std::size_t j = i;
  if (j < f.size() && isDigit(f[j]) && f[j] != '0') {
    const std::size_t start = j;
    const int n = readNumber(f, j, kMaxPosition);
    if (j < f.size() && f[j] == '$') {
      if (n > kMaxPosition) return std::nullopt;
      ph.position = n;
      ++j;
    } else {
      j = start;  // it was a width
    }
  } else if (j + 1 < f.size() && f[j] == '0' && f[j + 1] == '$') {
    return std::nullopt;  // arguments count from 1
  }
  for (; j < f.size(); ++j) {
    const char c = f[j];
    if (c == '-')
      ph.leftAlign = true;
    else if (c == '+')
      ph.plus = true;
    else if (c == ' ')
      ph.space = true;
    else if (c == '0')
      ph.zeroPad = true;
    else if (c == '#')
      ph.alternate = true;
    else
      break;
  }
  if (j < f.size() && f[j] == '*') return std::nullopt;
  ph.width = std::min(kMaxWidth, readNumber(f, j, kMaxWidth));
  if (j < f.size() && f[j] == '.') {
    ++j;
    if (j < f.size() && f[j] == '*') return std::nullopt;
    ph.precision = std::min(kMaxPrecision, readNumber(f, j, kMaxPrecision));
  }
  while (j < f.size() && std::string_view("hlqLzjt").find(f[j]) != std::string_view::npos) ++j;
  if (j >= f.size()) return std::nullopt;
  const char conversion = f[j];
  if (std::string_view("@sdiuxXofFeEgG").find(conversion) == std::string_view::npos) return std::nullopt;
  ph.conversion = conversion;
  i = j + 1;
  return ph;
}

std::size_t codePointCount(std::string_view s) {
  return static_cast<std::size_t>(std::count_if(
      s.begin(), s.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

void appendPadded(std::string& out, std::string_view prefix, std::string_view body, const Placeholder& ph,
                  bool zeroPadAllowed) {
  const std::size_t length = prefix.size() + codePointCount(body);
  const std::size_t width = static_cast<std::size_t>(ph.width);
  const std::size_t pad = width > length ? width - length : 0;
  if (ph.leftAlign) {
    out += prefix;
    out += body;
    out.append(pad, ' ');
  } else if (ph.zeroPad && zeroPadAllowed) {
    out += prefix;
    out.append(pad, '0');
    out += body;
  } else {
    out.append(pad, ' ');
    out += prefix;
    out += body;
  }
}

std::string toDecimal(double value, NumberStyle style, std::chars_format format,
                      std::optional<int> precision) {
  char buffer[512];  // fixed notation of 1e308 with 64 decimals fits
  const auto result = precision ? std::to_chars(buffer, buffer + sizeof buffer, value, format, *precision)
                                : std::to_chars(buffer, buffer + sizeof buffer, value, format);
  if (result.ec != std::errc()) return "0";
  std::string text(buffer, result.ptr);
  std::replace(text.begin(), text.end(), '.', style.decimalSeparator);
  return text;
}

// Integer placeholders: a double is truncated toward zero; out of range or NaN gives 0.
std::variant<std::int64_t, std::uint64_t> asInteger(const FormatArg::Value& value) {
  if (const auto* s = std::get_if<std::int64_t>(&value)) return *s;
  if (const auto* u = std::get_if<std::uint64_t>(&value)) return *u;
  if (const auto* d = std::get_if<double>(&value); d && std::isfinite(*d) && *d > -9.2e18 && *d < 9.2e18) {
    return static_cast<std::int64_t>(*d);
  }
  return std::int64_t{0};
}

double asDouble(const FormatArg::Value& value) {
  if (const auto* s = std::get_if<std::int64_t>(&value)) return static_cast<double>(*s);
  if (const auto* u = std::get_if<std::uint64_t>(&value)) return static_cast<double>(*u);
  if (const auto* d = std::get_if<double>(&value)) return *d;
  return 0.0;
}

void appendString(std::string& out, const FormatArg::Value& value, const Placeholder& ph, NumberStyle style) {
  std::string text;
  if (const auto* s = std::get_if<std::string_view>(&value))
    text = std::string(*s);
  else if (const auto* i = std::get_if<std::int64_t>(&value))
    text = std::to_string(*i);
  else if (const auto* u = std::get_if<std::uint64_t>(&value))
    text = std::to_string(*u);
  else
    text = toDecimal(std::get<double>(value), style, std::chars_format::general, std::nullopt);
  appendPadded(out, {}, text, ph, false);
}

void appendInteger(std::string& out, const FormatArg::Value& value, const Placeholder& ph) {
  const auto number = asInteger(value);
  const bool negative = std::holds_alternative<std::int64_t>(number) && std::get<std::int64_t>(number) < 0;
  std::uint64_t magnitude = 0;
  if (const auto* s = std::get_if<std::int64_t>(&number)) {
    magnitude = negative ? 0 - static_cast<std::uint64_t>(*s) : static_cast<std::uint64_t>(*s);
  } else {
    magnitude = std::get<std::uint64_t>(number);
  }
  int base = 10;
  std::string prefix;
  const char c = ph.conversion;
  if (c == 'x' || c == 'X' || c == 'o') {
    base = c == 'o' ? 8 : 16;
    // Hex and octal show the 64-bit pattern, as printf does for a negative value.
    if (negative) magnitude = static_cast<std::uint64_t>(std::get<std::int64_t>(number));
    if (ph.alternate && magnitude != 0) prefix = c == 'o' ? "0" : (c == 'x' ? "0x" : "0X");
  } else if (negative) {
    prefix = "-";
  } else if (ph.plus) {
    prefix = "+";
  } else if (ph.space) {
    prefix = " ";
  }
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, magnitude, base);
  std::string digits(buffer, result.ptr);
  if (c == 'X') upperCaseAscii(digits);
  if (ph.precision) {
    if (*ph.precision == 0 && magnitude == 0) digits.clear();
    if (digits.size() < static_cast<std::size_t>(*ph.precision)) {
      digits.insert(0, static_cast<std::size_t>(*ph.precision) - digits.size(), '0');
    }
  }
  appendPadded(out, prefix, digits, ph, !ph.precision);
}

void appendFloat(std::string& out, const FormatArg::Value& value, const Placeholder& ph, NumberStyle style) {
  const double number = asDouble(value);
  const char c = ph.conversion;
  const bool upper = c == 'F' || c == 'E' || c == 'G';
  std::chars_format format = std::chars_format::fixed;
  if (c == 'e' || c == 'E') format = std::chars_format::scientific;
  if (c == 'g' || c == 'G') format = std::chars_format::general;
  std::string text = toDecimal(std::fabs(number), style, format, ph.precision.value_or(6));
  if (upper) upperCaseAscii(text);
  std::string prefix;
  if (std::signbit(number) && !std::isnan(number))
    prefix = "-";
  else if (ph.plus)
    prefix = "+";
  else if (ph.space)
    prefix = " ";
  appendPadded(out, prefix, text, ph, std::isfinite(number));
}

}  // namespace

NumberStyle NumberStyle::forLanguageCode(std::string_view code) {
  const std::string_view language = code.substr(0, code.find_first_of("-_"));
  if (language == "de" || language == "fr" || language == "es") return NumberStyle{','};
  return NumberStyle{'.'};
}

std::string formatString(std::string_view format, std::span<const FormatArg> args, NumberStyle style) {
  std::string out;
  out.reserve(format.size() + 16);
  std::size_t nextPlain = 0;
  std::size_t i = 0;
  while (i < format.size()) {
    const std::size_t percent = format.find('%', i);
    if (percent == std::string_view::npos) {
      out += format.substr(i);
      break;
    }
    out += format.substr(i, percent - i);
    if (percent + 1 < format.size() && format[percent + 1] == '%') {
      out += '%';
      i = percent + 2;
      continue;
    }
    std::size_t end = percent + 1;
    const std::optional<Placeholder> ph = parsePlaceholder(format, end);
    if (!ph) {
      out += '%';  // the rest is copied as ordinary text
      i = percent + 1;
      continue;
    }
    const std::size_t index = ph->position > 0 ? static_cast<std::size_t>(ph->position - 1) : nextPlain++;
    i = end;
    if (index >= args.size()) {
      out += format.substr(percent, end - percent);
      continue;
    }
    const FormatArg::Value& value = args[index].value();
    switch (ph->conversion) {
      case '@':
      case 's':
        appendString(out, value, *ph, style);
        break;
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
        appendFloat(out, value, *ph, style);
        break;
      default:
        appendInteger(out, value, *ph);
        break;
    }
  }
  return out;
}

}  // namespace quillmark
