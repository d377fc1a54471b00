#include "fans/hwmon_pwm_channels_linux.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>

namespace quillmark {
namespace {

namespace fs = std::filesystem;

// "pwm3" -> 3; anything else (pwm3_enable, pwm) -> absent.
std::optional<int> pwmNumber(const std::string& name) {
  if (name.size() < 4 || name.compare(0, 3, "pwm") != 0) return std::nullopt;
  int number = 0;
  const auto [ptr, ec] = std::from_chars(name.data() + 3, name.data() + name.size(), number);
  if (ec != std::errc() || ptr != name.data() + name.size()) return std::nullopt;
  return number;
}

}  // namespace

std::vector<HwmonPwmChannel> findHwmonPwmChannels(const std::string& root) {
  std::error_code ec;
  std::vector<std::string> dirs;
  for (const auto& entry : fs::directory_iterator(root, ec)) dirs.push_back(entry.path().string());
  std::sort(dirs.begin(), dirs.end());
  std::vector<HwmonPwmChannel> channels;
  for (const std::string& dir : dirs) {
    std::vector<int> numbers;
    for (const auto& entry : fs::directory_iterator(dir, ec)) {
      const auto number = pwmNumber(entry.path().filename().string());
      if (number && fs::exists(dir + "/pwm" + std::to_string(*number) + "_enable", ec))
        numbers.push_back(*number);
    }
    std::sort(numbers.begin(), numbers.end());
    for (const int number : numbers) channels.push_back({dir, number});
  }
  return channels;
}

}  // namespace quillmark
