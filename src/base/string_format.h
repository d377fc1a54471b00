#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace quillmark {

// One argument of a printf-style format: a string, a signed or unsigned integer, or a double.
// Built implicitly from the usual C++ types so calls read like printf: formatString(f, {12, 3.5, "x"}).
class FormatArg {
 public:
  using Value = std::variant<std::string_view, std::int64_t, std::uint64_t, double>;

  FormatArg(std::string_view s) : value_(s) {}                        // NOLINT(google-explicit-constructor)
  FormatArg(const char* s) : value_(std::string_view(s ? s : "")) {}  // NOLINT(google-explicit-constructor)
  FormatArg(const std::string& s) : value_(std::string_view(s)) {}    // NOLINT(google-explicit-constructor)
  FormatArg(int v) : value_(std::int64_t{v}) {}                       // NOLINT(google-explicit-constructor)
  FormatArg(long v) : value_(std::int64_t{v}) {}                      // NOLINT(google-explicit-constructor)
  FormatArg(long long v) : value_(std::int64_t{v}) {}                 // NOLINT(google-explicit-constructor)
  FormatArg(unsigned v) : value_(std::uint64_t{v}) {}                 // NOLINT(google-explicit-constructor)
  FormatArg(unsigned long v) : value_(std::uint64_t{v}) {}            // NOLINT(google-explicit-constructor)
  FormatArg(unsigned long long v) : value_(std::uint64_t{v}) {}       // NOLINT(google-explicit-constructor)
  FormatArg(double v) : value_(v) {}                                  // NOLINT(google-explicit-constructor)
  FormatArg(float v) : value_(double{v}) {}                           // NOLINT(google-explicit-constructor)
  FormatArg(bool) = delete;  // almost always a mistake; pass an int or a localized word

  [[nodiscard]] const Value& value() const { return value_; }

 private:
  // A string argument only borrows its text: arguments live for one formatString() call.
  Value value_;
};

// The number conventions of a formatting language. Only the decimal separator varies: integers in
// localized texts are never grouped (a process count of 1234 reads "1234" in every language).
struct NumberStyle {
  char decimalSeparator = '.';

  // "de", "fr" and "es" write a decimal comma; every other code (and "en") a point.
  [[nodiscard]] static NumberStyle forLanguageCode(std::string_view code);
};

// Substitutes args into a printf-style format, as the string tables use it:
//   %@ and %s (string), %d %i %u %ld %lld (integer), %x %X %o, %f %F %e %E %g %G (double), %%;
//   flags - + space 0 #, a width, a precision (.N), length modifiers (h hh l ll q z j t L, ignored:
//   every integer is 64-bit); positional forms %N$… (N from 1).
// Never uses the C locale or any global state, so it is safe on any thread and unaffected by a
// GUI toolkit calling setlocale(). Floating-point conversions write style.decimalSeparator.
//
// A table is data a translator wrote, so nothing in it may crash or misbehave:
// - a placeholder whose argument is missing is copied to the output as written (for example
//   "%2$d"), so the mistake is visible rather than silently dropping a number;
// - extra arguments are ignored;
// - an argument of another kind is converted: a number in %@ prints as the number, a double in an
//   integer placeholder is truncated toward zero (out of range: 0), an integer in a floating-point
//   placeholder is converted, a string in a number placeholder prints as 0;
// - an incomplete or unknown placeholder ("%", "%k", "%*d", "%0$d") is copied as written;
// - plain placeholders take arguments in order, counting only plain ones, so "%2$@ %@" takes the
//   second and then the first argument;
// - widths above 256 and precisions above 64 are clamped, so a hostile table cannot make a huge
//   string.
[[nodiscard]] std::string formatString(std::string_view format, std::span<const FormatArg> args,
                                       NumberStyle style = {});
[[nodiscard]] inline std::string formatString(std::string_view format, std::initializer_list<FormatArg> args,
                                              NumberStyle style = {}) {
  return formatString(format, std::span<const FormatArg>(args.begin(), args.size()), style);
}

}  // namespace quillmark
