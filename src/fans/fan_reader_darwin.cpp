#include <cstdio>

#include "fans/fan_reader.h"
#include "sensors/smc.h"

namespace quillmark {

std::vector<double> FanReader::readFanSpeeds() {
  std::vector<double> speeds;
  for (int n = 0; n < kMaxFans; ++n) {
    char key[16];  // room for any int, so the format can never be cut short
    std::snprintf(key, sizeof key, "F%dAc", n);
    if (const auto rpm = SMC::readValue(key)) speeds.push_back(*rpm);
  }
  return speeds;
}

}  // namespace quillmark
