#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/frontend/bar_context.h"
#include "app/frontend/front_end_options.h"
#include "base/main_loop.h"
#include "sampling/monitor.h"

namespace quillmark {

class I3barOutput;
class L10n;
class SettingsManager;

// Where the front end gets the preferences it honours; asked at start and on every line.
struct FrontEndSettings {
  std::function<double()> refreshInterval;
  std::function<bool()> showNetSpeed;
  std::function<TempUnit()> tempUnit;
  std::function<AlarmThresholds()> thresholds;

  // Reads them from the settings store, which must outlive the result.
  static FrontEndSettings of(const SettingsManager& settings);
};

// Drives the monitor for the terminal and prints one line per refresh in the chosen format. Text
// mode keeps the monitor on its cheap path (as with the panel closed); the other formats publish as
// if the panel were open, since they show disk, sensors and processes.
//
// Every line tells the truth about a measured interval: the first measurement only primes the
// counters (CPU ticks, network bytes, process times) and prints nothing; a second one kPrimingSeconds
// later gives the first line, and the stored refresh interval takes over from there. So a one-shot
// `--count 1` takes about a second and reports that second's load.
//
// Lines go to `emit` with keep set for protocol framing that must never be dropped (the i3bar
// header and first array). `finish` is called once after --count lines. Main thread only.
class FrontEnd {
 public:
  static constexpr double kPrimingSeconds = 1.0;
  using Emit = std::function<void(std::string line, bool keep)>;

  FrontEnd(FrontEndOptions options, FrontEndSettings settings, Monitor& monitor, MainLoop& loop,
           const L10n& l10n, Emit emit, std::function<void()> finish);
  ~FrontEnd();
  FrontEnd(const FrontEnd&) = delete;
  FrontEnd& operator=(const FrontEnd&) = delete;

  void start();
  void stop();

 private:
  void measureAfterPriming();
  void print(const Monitor::Snapshot& snapshot);
  [[nodiscard]] BarContext barContext() const;

  FrontEndOptions options_;
  FrontEndSettings settings_;
  Monitor& monitor_;
  MainLoop& loop_;
  const L10n& l10n_;
  Emit emit_;
  std::function<void()> finish_;
  std::shared_ptr<FrontEnd*> alive_;  // lets a delayed task outlive the front end harmlessly
  bool primed_ = false;
  long printed_ = 0;
  std::unique_ptr<I3barOutput> i3bar_;  // from the first line of --i3bar on
};

}  // namespace quillmark
