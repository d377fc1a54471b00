#include <dispatch/dispatch.h>

#include "base/serial_queue.h"

namespace quillmark {
namespace {

// A private serial dispatch queue at utility quality of service: the measurement yields to
// whatever the user is doing, and the label shows up in Instruments and crash reports.
class DispatchSerialQueue final : public SerialQueue {
 public:
  explicit DispatchSerialQueue(const std::string& label)
      : queue_(dispatch_queue_create(label.c_str(), dispatch_queue_attr_make_with_qos_class(
                                                        DISPATCH_QUEUE_SERIAL, QOS_CLASS_UTILITY, 0))) {}

  ~DispatchSerialQueue() override {
    // Like the Linux queue, finish what was submitted before the owner's state goes away: an
    // empty synchronous job returns only after every earlier job has run.
    dispatch_sync_f(queue_, nullptr, [](void*) {});
    dispatch_release(queue_);
  }

  DispatchSerialQueue(const DispatchSerialQueue&) = delete;
  DispatchSerialQueue& operator=(const DispatchSerialQueue&) = delete;

  void async(Job job) override {
    // Ownership of the job passes to the queue and back to run(), which deletes it.
    dispatch_async_f(queue_, new Job(std::move(job)), &run);
  }

 private:
  static void run(void* context) {
    const std::unique_ptr<Job> job(static_cast<Job*>(context));
    (*job)();
  }

  dispatch_queue_t queue_;
};

}  // namespace

std::unique_ptr<SerialQueue> SerialQueue::makeBackground(const std::string& label) {
  return std::make_unique<DispatchSerialQueue>(label);
}

}  // namespace quillmark
