#pragma once

#include <cstdint>
#include <functional>

namespace quillmark {

// The main thread's run loop: posted work, delayed work and repeating timers. Everything that owns
// published state runs on it. post() and postAfter() may be called from any thread; timers are
// added and cancelled on the main thread only.
class MainLoop {
 public:
  using Task = std::function<void()>;
  using TimerId = std::uint64_t;  // 0 never names a timer

  virtual ~MainLoop() = default;

  virtual void post(Task task) = 0;
  virtual void postAfter(double delaySeconds, Task task) = 0;
  // Fires every periodSeconds, first one period from now. A loop that falls behind skips the
  // missed firings instead of bunching them up (as a run-loop timer does).
  [[nodiscard]] virtual TimerId addRepeatingTimer(double periodSeconds, Task task) = 0;
  virtual void cancelTimer(TimerId id) = 0;

  // The process-wide loop of the main thread on this platform.
  static MainLoop& main();
};

}  // namespace quillmark
