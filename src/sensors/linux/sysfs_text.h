#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillmark::SysfsText {

// The parsers every sysfs reader shares. Each takes the file's text as read and rejects anything
// that is not exactly what the attribute promises (a driver may leave a file empty, write an
// error name into it, or report a sentinel), so a damaged file is an absent value, never a wrong one.

// The text without surrounding whitespace and the trailing newline.
[[nodiscard]] std::string_view trimmed(std::string_view text);
// A whole signed decimal number that fits in 64 bits; "", "-ENODATA", "12abc" and 2^63 are absent.
[[nodiscard]] std::optional<std::int64_t> integer(std::string_view text);
// A temperature in milli-degrees Celsius as degrees, absent outside -100..300 °C (beyond any
// real sensor; drivers use such values as "no reading").
[[nodiscard]] std::optional<double> milliCelsius(std::string_view text);
// A fan speed in RPM, absent when negative or above 100 000 (no fan turns that fast).
[[nodiscard]] std::optional<double> rpm(std::string_view text);

// Reads a small file whole; absent when it cannot be opened or read. For discovery, not per tick.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path);

}  // namespace quillmark::SysfsText
