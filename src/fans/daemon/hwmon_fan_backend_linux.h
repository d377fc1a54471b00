#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fans/daemon/fan_backend.h"

namespace quillmark {

// Fans on Linux: every hwmon pwmN channel that has a pwmN_enable, driven in manual mode
// (pwmN_enable = 1) with pwmN = the floor's share of the fan's top speed (fanN_max, else
// kDefaultMaxRPM) x 255, rounded up. Before the first write to a channel its original enable
// value and duty are saved to stateFile (atomically), so that a daemon started after a crash
// can put them back with restoreLeftovers(). Paths come from root (normally /sys/class/hwmon)
// so tests run on a fake tree. Daemon thread only.
class HwmonFanBackend final : public FanBackend {
 public:
  static constexpr double kDefaultMaxRPM = 6000.0;

  HwmonFanBackend(std::string root, std::string stateFile);

  std::vector<FanReading> readFans() override;
  bool holdFloor(int rpm) override;
  bool restore() override;
  bool overheating() override;
  void fullSpeed() override;

  // Restores the channels listed in a state file left by an earlier run, then removes it.
  // Returns how many channels were restored. Entries outside root are ignored.
  int restoreLeftovers();

 private:
  struct Channel {
    std::string dir;  // the hwmonN folder
    int number = 0;   // the N of pwmN
    std::optional<long> savedEnable;
    std::optional<long> savedPwm;
    [[nodiscard]] std::string file(const std::string& name) const;
  };

  void discover();
  bool saveState() const;
  bool restoreChannel(Channel& channel);

  std::string root_;
  std::string stateFile_;
  std::vector<Channel> channels_;
};

}  // namespace quillmark
