#pragma once

#include <string>
#include <vector>

namespace quillmark {

// One hwmon pwm channel that can be driven: pwmN with a pwmN_enable beside it.
struct HwmonPwmChannel {
  std::string dir;  // the hwmonN folder
  int number = 0;   // the N of pwmN (and of its fanN_* files)
};

// Every drivable channel under root (normally /sys/class/hwmon), ordered by folder then number:
// the order quillmark-fand numbers its fans in, and the app relies on for "the first fan".
[[nodiscard]] std::vector<HwmonPwmChannel> findHwmonPwmChannels(const std::string& root);

}  // namespace quillmark
