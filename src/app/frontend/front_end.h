#pragma once

#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "sampling/monitor.h"

namespace quillmark {

struct FrontEndOptions {
  bool json = false;
  bool help = false;
  bool version = false;
  std::optional<long> count;  // lines to print before exiting

  // Absent with a message in `error` for an unknown option or a bad count.
  static std::optional<FrontEndOptions> parse(int argc, const char* const* argv, std::string& error);
};

// Where the front end gets the two preferences it honours; asked at start and on every tick.
struct FrontEndSettings {
  std::function<double()> refreshInterval;
  std::function<bool()> showNetSpeed;
};

// Drives the monitor for the terminal: text mode prints the status text on every tick with the
// panel closed (only the cheap readers run); JSON mode publishes as if the panel were open and
// prints every applied snapshot. Main thread only.
class FrontEnd {
 public:
  FrontEnd(FrontEndOptions options, FrontEndSettings settings, Monitor& monitor, std::FILE* out,
           std::function<void()> finish);

  void start();  // at the stored refresh interval
  void stop();
  [[nodiscard]] bool outputFailed() const { return outputFailed_; }

 private:
  void emit(const std::string& line);

  FrontEndOptions options_;
  FrontEndSettings settings_;
  Monitor& monitor_;
  std::FILE* out_;
  std::function<void()> finish_;
  long printed_ = 0;
  bool outputFailed_ = false;
};

}  // namespace quillmark
