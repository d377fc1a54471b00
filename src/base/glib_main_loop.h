#pragma once

#include <map>
#include <mutex>
#include <set>
#include <vector>

#include "base/linux_main_loop.h"

typedef struct _GMainContext GMainContext;
typedef struct _GMainLoop GMainLoop;
typedef struct _GSource GSource;

namespace quillmark {

// The main loop on a GLib main context (the default one unless told otherwise), so that GTK's
// windows and Quillmark's services share one thread and one loop: GTK's events, posted work,
// delayed work, repeating timers and descriptor watches are all sources of the same context.
// Repeating timers keep their original grid and skip missed firings, as PollMainLoop's do.
class GlibMainLoop final : public LinuxMainLoop {
 public:
  // context null: GLib's default context (the one GTK runs on).
  explicit GlibMainLoop(GMainContext* context = nullptr);
  ~GlibMainLoop() override;
  GlibMainLoop(const GlibMainLoop&) = delete;
  GlibMainLoop& operator=(const GlibMainLoop&) = delete;

  void post(Task task) override;
  void postAfter(double delaySeconds, Task task) override;
  TimerId addRepeatingTimer(double periodSeconds, Task task) override;
  void cancelTimer(TimerId id) override;

  void watchReadable(int fd, Task onReadable) override;
  void watchWritable(int fd, Task onWritable) override;
  void unwatch(int fd) override;

  void run() override;
  void quit() override;

  // Drops the work posted or delayed but not yet run, destroying it now (the closures may hold
  // objects that must go before what they refer to). Main thread only.
  void dropPending();

 private:
  struct Timer;
  static int dispatchPosted(void* self);
  static int dispatchTimer(void* timer);
  // A ready-time source that runs the timer (and owns it), not yet attached.
  static GSource* timerSource(Timer* timer);
  void attachWatch(int fd, bool writable, Task task);

  GMainContext* context_;
  GMainLoop* loop_;
  std::mutex mutex_;  // guards posted_ and postedSource_, which other threads touch
  std::vector<Task> posted_;
  GSource* postedSource_ = nullptr;       // an idle source while posted work waits
  std::set<GSource*> oneShots_;           // delayed work not yet run
  std::map<TimerId, GSource*> timers_;    // main thread only
  std::multimap<int, GSource*> watches_;  // main thread only
  TimerId nextTimer_ = 1;
};

}  // namespace quillmark
