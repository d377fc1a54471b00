#pragma once

#include <vector>

namespace quillmark {

// Current fan speeds in RPM for display, read without privileges: on macOS the SMC keys F0Ac to
// F9Ac (a missing number is skipped, not the end of the list); on Linux every hwmon fanN_input,
// ordered by chip and fan number so a fan keeps its place from one call to the next. Empty means
// no fan (a fanless machine). Any thread; the sampler normally reads fans through its own kept-open
// sensor files instead.
class FanReader {
 public:
  FanReader() = delete;
  // The highest fan number the SMC is asked about, plus one.
  static constexpr int kMaxFans = 10;
  [[nodiscard]] static std::vector<double> readFanSpeeds();
};

}  // namespace quillmark
