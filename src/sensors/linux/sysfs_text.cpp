#include "sensors/linux/sysfs_text.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>

namespace quillmark::SysfsText {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\n\r";
  const auto first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

std::optional<std::int64_t> integer(std::string_view text) {
  const std::string_view number = trimmed(text);
  if (number.empty()) return std::nullopt;
  std::int64_t value = 0;
  const char* end = number.data() + number.size();
  const auto [stop, error] = std::from_chars(number.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::optional<double> milliCelsius(std::string_view text) {
  const auto milli = integer(text);
  if (!milli || *milli < -100'000 || *milli > 300'000) return std::nullopt;
  return static_cast<double>(*milli) / 1000.0;
}

std::optional<double> rpm(std::string_view text) {
  const auto value = integer(text);
  if (!value || *value < 0 || *value > 100'000) return std::nullopt;
  return static_cast<double>(*value);
}

std::optional<std::string> readFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  std::string content;
  char buffer[4096];
  for (;;) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      ::close(fd);
      return std::nullopt;
    }
    if (n == 0) break;
    content.append(buffer, static_cast<std::size_t>(n));
    if (content.size() > 1 << 20) break;  // no attribute is this long; stop rather than trust it
  }
  ::close(fd);
  return content;
}

}  // namespace quillmark::SysfsText
