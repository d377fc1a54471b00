#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "base/clock.h"
#include "base/main_loop.h"
#include "base/published.h"
#include "base/shared_instance.h"

namespace quillmark {

// How hard the kernel is pressed for memory; a higher value is worse. Logs print the case name.
enum class PressureLevel { normal = 0, warning = 1, critical = 2 };

[[nodiscard]] std::string_view name(PressureLevel level);

// The macOS memory-pressure source reports a set of events (normal 0x1, warning 0x2, critical
// 0x4); the worst one present wins, and no event at all reads as normal.
[[nodiscard]] PressureLevel levelFromDispatchFlags(std::uintptr_t flags);

// Where the platform's pressure reports come from: the dispatch memory-pressure source on macOS,
// PSI on Linux. start() is called once; the source then calls onLevel on the main thread whenever
// it sees a level (repeats allowed). Destroying the source stops the reports.
class PressureSource {
 public:
  virtual ~PressureSource() = default;
  virtual void start(std::function<void(PressureLevel)> onLevel) = 0;

  // The platform's source, delivering on loop.
  [[nodiscard]] static std::unique_ptr<PressureSource> makePlatform(MainLoop& loop, const Clock& clock);
};

// Follows the kernel's memory-pressure reports and publishes the current level. A rise asks for the
// processes responsible to be captured (the insight engine's culprit snapshot) before the new level
// is published; a fall captures nothing. Main thread only.
class PressureMonitor {
 public:
  // onRise receives the new, higher level while `level` still holds the old one.
  PressureMonitor(std::unique_ptr<PressureSource> source, std::function<void(PressureLevel)> onRise);
  PressureMonitor(const PressureMonitor&) = delete;
  PressureMonitor& operator=(const PressureMonitor&) = delete;

  static PressureMonitor& shared() { return SharedInstance<PressureMonitor>::get(); }

  Published<PressureLevel> level{PressureLevel::normal};

  // Starts the source once; later calls do nothing. There is no stop: it runs for the whole run.
  void start();
  // One report from the source: logs and publishes a change, ignores a repeat.
  void handle(PressureLevel newLevel);

 private:
  std::function<void(PressureLevel)> onRise_;
  bool started_ = false;
  // Last, so it is destroyed first and cannot report into a half-destroyed monitor.
  std::unique_ptr<PressureSource> source_;
};

}  // namespace quillmark
