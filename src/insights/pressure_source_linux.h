#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "base/clock.h"
#include "base/main_loop.h"
#include "insights/pressure_monitor.h"
#include "insights/psi_levels.h"

namespace quillmark {

// Memory pressure from Linux PSI (/proc/pressure/memory).
//
// Two ways of listening, chosen at start():
//  - trigger: a PSI poll trigger ("some 200000 2000000": 200 ms of stall within a 2 s window, the
//    warning threshold's share). Unprivileged triggers need Linux 6.5+ and a window that is a
//    multiple of 2 s; older kernels refuse them without CAP_SYS_RESOURCE. A watcher thread waits
//    for the kernel's POLLPRI and posts to the main loop; the file is then read every 2 s until the
//    readings are calm and the level is back to normal, since a trigger never reports the end.
//  - polling: read avg10 every 2 s (PSI recomputes its averages every 2 s, so faster is useless).
// The log names the way taken and why. Readings become levels through PsiLevelRules.
//
// start() and everything it reports run on the main thread; the watcher thread only posts.
class PsiPressureSource final : public PressureSource {
 public:
  enum class Mode { notStarted, trigger, polling, unavailable };
  static constexpr double kPollSeconds = 2.0;
  static constexpr const char* kTrigger = "some 200000 2000000";

  // allowTrigger false skips the trigger (tests of the polling path on recorded files).
  PsiPressureSource(MainLoop& loop, const Clock& clock, std::string path = "/proc/pressure/memory",
                    bool allowTrigger = true);
  ~PsiPressureSource() override;

  void start(std::function<void(PressureLevel)> onLevel) override;

  [[nodiscard]] Mode mode() const { return mode_; }
  [[nodiscard]] bool polling() const { return timer_ != 0; }
  // What the watcher thread posts when the kernel fires the trigger.
  void triggerFired();

 private:
  void readOnce();
  void startPolling();
  void stopPolling();
  [[nodiscard]] bool openTrigger(std::string& why);
  [[nodiscard]] bool startWatcher(std::string& why);
  void watch(const std::weak_ptr<PsiPressureSource*>& weak);

  MainLoop& loop_;
  const Clock& clock_;
  std::string path_;
  bool allowTrigger_;
  std::function<void(PressureLevel)> onLevel_;
  PsiLevelRules rules_;
  Mode mode_ = Mode::notStarted;
  MainLoop::TimerId timer_ = 0;
  int triggerFd_ = -1;
  int stopFd_ = -1;
  std::thread watcher_;
  // Posted work checks it, so nothing runs into a destroyed source.
  std::shared_ptr<PsiPressureSource*> alive_;
};

}  // namespace quillmark
