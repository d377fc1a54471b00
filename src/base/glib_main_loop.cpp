#include "base/glib_main_loop.h"

#include <glib-unix.h>
#include <glib.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillmark {
namespace {

// A source that fires at its ready time (monotonic microseconds) and has no descriptor: GLib
// wakes for it exactly then, with no polling in between.
gboolean dispatchReady(GSource*, GSourceFunc callback, gpointer data) { return callback(data); }
GSourceFuncs kReadyFuncs = {nullptr, nullptr, dispatchReady, nullptr, nullptr, nullptr};

gint64 toMicroseconds(double seconds) { return static_cast<gint64>(std::ceil(std::max(seconds, 0.0) * 1e6)); }

struct Watch {
  int fd = -1;
  MainLoop::Task task;
};

gboolean dispatchWatch(gint, GIOCondition, gpointer data) {
  // A task may end its own watch; the copy keeps it alive while it runs.
  const MainLoop::Task task = static_cast<Watch*>(data)->task;
  task();
  return G_SOURCE_CONTINUE;
}

}  // namespace

struct GlibMainLoop::Timer {
  GlibMainLoop* loop = nullptr;
  TimerId id = 0;  // 0 for one-shot work
  gint64 due = 0;
  gint64 period = 0;
  Task task;
  GSource* source = nullptr;
};

GlibMainLoop::GlibMainLoop(GMainContext* context)
    : context_(context ? g_main_context_ref(context) : g_main_context_ref(g_main_context_default())),
      loop_(g_main_loop_new(context_, FALSE)) {}

GlibMainLoop::~GlibMainLoop() {
  // Nothing of this loop may fire later on a context that outlives it (the default one does).
  dropPending();
  for (auto& [id, source] : timers_) {
    g_source_destroy(source);
    g_source_unref(source);
  }
  for (auto& [fd, source] : watches_) {
    g_source_destroy(source);
    g_source_unref(source);
  }
  g_main_loop_unref(loop_);
  g_main_context_unref(context_);
}

void GlibMainLoop::post(Task task) {
  std::lock_guard lock(mutex_);
  posted_.push_back(std::move(task));
  if (postedSource_) return;
  // One idle source carries every task posted before it runs, so they keep their order.
  postedSource_ = g_idle_source_new();
  g_source_set_priority(postedSource_, G_PRIORITY_DEFAULT);
  g_source_set_callback(postedSource_, &GlibMainLoop::dispatchPosted, this, nullptr);
  g_source_attach(postedSource_, context_);
  g_source_unref(postedSource_);  // the context holds it until it is done
}

int GlibMainLoop::dispatchPosted(void* data) {
  auto& self = *static_cast<GlibMainLoop*>(data);
  std::vector<Task> work;
  {
    std::lock_guard lock(self.mutex_);
    work.swap(self.posted_);
    self.postedSource_ = nullptr;
  }
  for (auto& task : work) task();
  return G_SOURCE_REMOVE;
}

GSource* GlibMainLoop::timerSource(Timer* timer) {
  GSource* source = g_source_new(&kReadyFuncs, sizeof(GSource));
  timer->source = source;
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_ready_time(source, timer->due);
  g_source_set_callback(source, &GlibMainLoop::dispatchTimer, timer,
                        [](gpointer t) { delete static_cast<Timer*>(t); });
  return source;
}

void GlibMainLoop::postAfter(double delaySeconds, Task task) {
  GSource* source = timerSource(
      new Timer{this, 0, g_get_monotonic_time() + toMicroseconds(delaySeconds), 0, std::move(task), nullptr});
  std::lock_guard lock(mutex_);
  oneShots_.insert(source);
  g_source_attach(source, context_);
  g_source_unref(source);
}

MainLoop::TimerId GlibMainLoop::addRepeatingTimer(double periodSeconds, Task task) {
  const TimerId id = nextTimer_++;
  const gint64 period = std::max<gint64>(toMicroseconds(periodSeconds), 1000);
  GSource* source =
      timerSource(new Timer{this, id, g_get_monotonic_time() + period, period, std::move(task), nullptr});
  g_source_attach(source, context_);
  timers_.emplace(id, source);  // keeps its reference until cancelled
  return id;
}

void GlibMainLoop::cancelTimer(TimerId id) {
  const auto it = timers_.find(id);
  if (it == timers_.end()) return;
  g_source_destroy(it->second);
  g_source_unref(it->second);
  timers_.erase(it);
}

int GlibMainLoop::dispatchTimer(void* data) {
  // GLib holds the timer's data for the whole dispatch, even if its task cancels it.
  Timer& timer = *static_cast<Timer*>(data);
  GlibMainLoop& self = *timer.loop;
  if (timer.id == 0) {
    {
      std::lock_guard lock(self.mutex_);
      self.oneShots_.erase(timer.source);
    }
    timer.task();
    return G_SOURCE_REMOVE;
  }
  const Task task = timer.task;
  task();
  if (!self.timers_.count(timer.id)) return G_SOURCE_REMOVE;  // cancelled by its own task
  // Next firing on the original grid, skipping those that were missed.
  const gint64 now = g_get_monotonic_time();
  timer.due += timer.period;
  if (timer.due <= now) timer.due += ((now - timer.due) / timer.period + 1) * timer.period;
  g_source_set_ready_time(timer.source, timer.due);
  return G_SOURCE_CONTINUE;
}

void GlibMainLoop::attachWatch(int fd, bool writable, Task task) {
  const auto condition =
      static_cast<GIOCondition>((writable ? G_IO_OUT : G_IO_IN) | G_IO_HUP | G_IO_ERR | G_IO_NVAL);
  GSource* source = g_unix_fd_source_new(fd, condition);
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(source, G_SOURCE_FUNC(dispatchWatch), new Watch{fd, std::move(task)},
                        [](gpointer w) { delete static_cast<Watch*>(w); });
  g_source_attach(source, context_);
  watches_.emplace(fd, source);
}

void GlibMainLoop::watchReadable(int fd, Task onReadable) { attachWatch(fd, false, std::move(onReadable)); }

void GlibMainLoop::watchWritable(int fd, Task onWritable) { attachWatch(fd, true, std::move(onWritable)); }

void GlibMainLoop::unwatch(int fd) {
  const auto [first, last] = watches_.equal_range(fd);
  for (auto it = first; it != last; ++it) {
    g_source_destroy(it->second);
    g_source_unref(it->second);
  }
  watches_.erase(first, last);
}

void GlibMainLoop::dropPending() {
  std::vector<Task> posted;
  std::set<GSource*> oneShots;
  {
    std::lock_guard lock(mutex_);
    if (postedSource_) g_source_destroy(postedSource_);
    postedSource_ = nullptr;
    posted.swap(posted_);
    oneShots.swap(oneShots_);
  }
  // Outside the lock: a dropped closure's destructor may post again.
  for (GSource* source : oneShots) g_source_destroy(source);
}

void GlibMainLoop::run() { g_main_loop_run(loop_); }

void GlibMainLoop::quit() { g_main_loop_quit(loop_); }

}  // namespace quillmark
