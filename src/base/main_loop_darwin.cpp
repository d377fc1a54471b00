#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#include <map>
#include <memory>

#include "base/cf_ref_darwin.h"
#include "base/main_loop.h"

namespace quillmark {
namespace {

// The main thread's loop is the application's run loop: posted work goes through the main
// dispatch queue, timers are CFRunLoop timers in the common modes so that they keep firing while
// a menu is tracked or the panel is dragged.
class RunLoopMainLoop final : public MainLoop {
 public:
  void post(Task task) override {
    dispatch_async_f(dispatch_get_main_queue(), new Task(std::move(task)), &runOnce);
  }

  void postAfter(double delaySeconds, Task task) override {
    const auto delay = static_cast<std::int64_t>(delaySeconds * static_cast<double>(NSEC_PER_SEC));
    dispatch_after_f(dispatch_time(DISPATCH_TIME_NOW, delay), dispatch_get_main_queue(),
                     new Task(std::move(task)), &runOnce);
  }

  TimerId addRepeatingTimer(double periodSeconds, Task task) override {
    // The run loop owns the task through the context: release() frees it with the timer.
    CFRunLoopTimerContext context{0, new Task(std::move(task)), nullptr, &releaseTask, nullptr};
    CFRef<CFRunLoopTimerRef> timer(CFRunLoopTimerCreate(kCFAllocatorDefault,
                                                        CFAbsoluteTimeGetCurrent() + periodSeconds,
                                                        periodSeconds, 0, 0, &fire, &context));
    if (!timer) {
      releaseTask(context.info);
      return 0;
    }
    CFRunLoopAddTimer(CFRunLoopGetMain(), timer.get(), kCFRunLoopCommonModes);
    const TimerId id = ++lastId_;
    timers_.emplace(id, std::move(timer));
    return id;
  }

  void cancelTimer(TimerId id) override {
    auto it = timers_.find(id);
    if (it == timers_.end()) return;
    CFRunLoopTimerInvalidate(it->second.get());
    timers_.erase(it);
  }

 private:
  static void runOnce(void* context) {
    const std::unique_ptr<Task> task(static_cast<Task*>(context));
    (*task)();
  }
  static void fire(CFRunLoopTimerRef, void* info) { (*static_cast<Task*>(info))(); }
  static void releaseTask(const void* info) { delete static_cast<const Task*>(info); }

  // Main thread only, like every timer call.
  TimerId lastId_ = 0;
  std::map<TimerId, CFRef<CFRunLoopTimerRef>> timers_;
};

}  // namespace

MainLoop& MainLoop::main() {
  static RunLoopMainLoop loop;
  return loop;
}

}  // namespace quillmark
