#include "fans/daemon/hwmon_fan_backend_linux.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "base/file_util.h"
#include "fans/hwmon_pwm_channels_linux.h"

namespace quillmark {
namespace {

namespace fs = std::filesystem;

std::optional<long> readNumber(const std::string& path) {
  const auto text = readWholeFile(path);
  if (!text) return std::nullopt;
  long value = 0;
  const char* begin = text->data();
  const char* end = begin + text->size();
  while (begin < end && *begin == ' ') ++begin;
  const auto [ptr, ec] = std::from_chars(begin, end, value);
  if (ec != std::errc() || ptr == begin) return std::nullopt;
  return value;
}

// sysfs attributes are written in place; a missing file is an error, never created.
bool writeNumber(const std::string& path, long value) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  if (fd < 0) return false;
  const std::string text = std::to_string(value) + "\n";
  const ssize_t written = ::write(fd, text.data(), text.size());
  const bool closed = ::close(fd) == 0;
  return written == static_cast<ssize_t>(text.size()) && closed;
}

// Chips whose temperatures are the processor's own.
constexpr std::array<std::string_view, 5> kCpuChips{"coretemp", "k10temp", "zenpower", "cpu_thermal",
                                                    "macsmc_hwmon"};

}  // namespace

std::string HwmonFanBackend::Channel::file(const std::string& name) const { return dir + "/" + name; }

HwmonFanBackend::HwmonFanBackend(std::string root, std::string stateFile)
    : root_(std::move(root)), stateFile_(std::move(stateFile)) {
  discover();
}

void HwmonFanBackend::discover() {
  for (HwmonPwmChannel& found : findHwmonPwmChannels(root_)) {
    channels_.push_back({std::move(found.dir), found.number, std::nullopt, std::nullopt});
  }
}

std::vector<FanReading> HwmonFanBackend::readFans() {
  std::vector<FanReading> fans;
  for (std::size_t i = 0; i < channels_.size(); ++i) {
    const Channel& c = channels_[i];
    const std::string fan = "fan" + std::to_string(c.number);
    FanReading reading;
    reading.index = static_cast<int>(i);
    reading.actualRPM = static_cast<double>(readNumber(c.file(fan + "_input")).value_or(0));
    reading.targetRPM = static_cast<double>(readNumber(c.file(fan + "_target")).value_or(0));
    reading.minRPM = static_cast<double>(readNumber(c.file(fan + "_min")).value_or(0));
    reading.maxRPM = static_cast<double>(readNumber(c.file(fan + "_max")).value_or(0));
    reading.forced = c.savedEnable.has_value();
    fans.push_back(reading);
  }
  return fans;
}

bool HwmonFanBackend::holdFloor(int rpm) {
  bool anySet = false;
  for (Channel& c : channels_) {
    const std::string fan = "fan" + std::to_string(c.number);
    const std::string pwm = c.file("pwm" + std::to_string(c.number));
    const std::string enable = pwm + "_enable";
    if (!c.savedEnable) {
      const auto enableNow = readNumber(enable);
      const auto pwmNow = readNumber(pwm);
      if (!enableNow || !pwmNow) continue;
      c.savedEnable = enableNow;
      c.savedPwm = pwmNow;
      // Saved before the first write: a crash between the two must still find the originals.
      if (!saveState()) {
        c.savedEnable.reset();
        c.savedPwm.reset();
        continue;
      }
    }
    const auto reportedMax = readNumber(c.file(fan + "_max"));
    const double top = reportedMax && *reportedMax > 0 ? static_cast<double>(*reportedMax) : kDefaultMaxRPM;
    const double bottom =
        std::min(static_cast<double>(std::max(readNumber(c.file(fan + "_min")).value_or(0), 0L)), top);
    const double target = std::clamp(static_cast<double>(rpm), bottom, top);
    const long duty = std::clamp(static_cast<long>(std::ceil(target / top * 255.0)), 0L, 255L);
    // Manual mode first: some drivers ignore a duty written while automatic control runs.
    if (!writeNumber(enable, 1) || !writeNumber(pwm, duty)) {
      (void)restoreChannel(c);
      (void)saveState();
      continue;
    }
    anySet = true;
  }
  return anySet;
}

bool HwmonFanBackend::restoreChannel(Channel& c) {
  if (!c.savedEnable) return true;
  const std::string pwm = c.file("pwm" + std::to_string(c.number));
  // The duty first, then the mode: an original manual mode comes back with its own duty.
  const bool dutyBack = writeNumber(pwm, *c.savedPwm);
  const bool modeBack = writeNumber(pwm + "_enable", *c.savedEnable);
  c.savedEnable.reset();
  c.savedPwm.reset();
  return dutyBack && modeBack;
}

bool HwmonFanBackend::restore() {
  bool all = true;
  bool any = false;
  for (Channel& c : channels_) {
    any = any || c.savedEnable.has_value();
    all = restoreChannel(c) && all;
  }
  if (any || fs::exists(stateFile_)) {
    std::error_code ec;
    fs::remove(stateFile_, ec);
  }
  return all;
}

bool HwmonFanBackend::saveState() const {
  nlohmann::json list = nlohmann::json::array();
  for (const Channel& c : channels_) {
    if (!c.savedEnable) continue;
    list.push_back({{"pwm", c.file("pwm" + std::to_string(c.number))},
                    {"enable", *c.savedEnable},
                    {"duty", *c.savedPwm}});
  }
  return writeFileAtomically(stateFile_, nlohmann::json{{"channels", list}}.dump() + "\n");
}

int HwmonFanBackend::restoreLeftovers() {
  const auto text = readWholeFile(stateFile_);
  if (!text) return 0;
  int restored = 0;
  const auto state = nlohmann::json::parse(*text, nullptr, /*allow_exceptions=*/false);
  const auto channels = state.is_object() ? state.find("channels") : state.end();
  if (channels != state.end() && channels->is_array()) {
    for (const auto& entry : *channels) {
      if (!entry.is_object()) continue;
      const auto pwm = entry.find("pwm");
      const auto enable = entry.find("enable");
      const auto duty = entry.find("duty");
      if (pwm == entry.end() || !pwm->is_string() || enable == entry.end() || !enable->is_number_integer() ||
          duty == entry.end() || !duty->is_number_integer()) {
        continue;
      }
      // Only pwm files of this tree: a damaged state file must not aim writes anywhere else.
      const fs::path path = fs::path(pwm->get<std::string>()).lexically_normal();
      const bool inside = path.parent_path().parent_path() == fs::path(root_).lexically_normal();
      const std::string name = path.filename().string();
      const bool isPwm = name.size() > 3 && name.compare(0, 3, "pwm") == 0 &&
                         name.find_first_not_of("0123456789", 3) == std::string::npos;
      if (!inside || !isPwm) continue;
      const bool ok = writeNumber(path.string(), duty->get<long>()) &&
                      writeNumber(path.string() + "_enable", enable->get<long>());
      restored += ok ? 1 : 0;
    }
  }
  std::error_code ec;
  fs::remove(stateFile_, ec);
  return restored;
}

bool HwmonFanBackend::overheating() {
  std::error_code ec;
  for (const auto& chip : fs::directory_iterator(root_, ec)) {
    const std::string dir = chip.path().string();
    std::string name = readWholeFile(dir + "/name").value_or("");
    while (!name.empty() && (name.back() == '\n' || name.back() == ' ')) name.pop_back();
    if (std::find(kCpuChips.begin(), kCpuChips.end(), name) == kCpuChips.end()) continue;
    for (int i = 1; i <= 32; ++i) {
      const std::string base = dir + "/temp" + std::to_string(i);
      const auto crit = readNumber(base + "_crit");
      const auto input = readNumber(base + "_input");
      if (crit && input && *crit > 0 && *input >= *crit) return true;
    }
  }
  return false;
}

void HwmonFanBackend::fullSpeed() {
  for (const Channel& c : channels_) {
    if (c.savedEnable) (void)writeNumber(c.file("pwm" + std::to_string(c.number)), 255);
  }
}

}  // namespace quillmark
