#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "base/serial_queue.h"

namespace quillmark {
namespace {

// A worker thread draining a FIFO. Destruction finishes the jobs already submitted, then joins,
// so nothing submitted is silently lost.
class ThreadSerialQueue final : public SerialQueue {
 public:
  explicit ThreadSerialQueue(std::string label) : label_(std::move(label)) {
    worker_ = std::thread([this] { run(); });
  }

  ~ThreadSerialQueue() override {
    {
      std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    wake_.notify_one();
    worker_.join();
  }

  void async(Job job) override {
    {
      std::lock_guard lock(mutex_);
      jobs_.push_back(std::move(job));
    }
    wake_.notify_one();
  }

 private:
  void run() {
    // The closest Linux analogue of a "utility" quality of service: the measurement yields to
    // whatever the user is doing. Thread names are limited to 15 bytes.
    pthread_setname_np(pthread_self(), label_.substr(label_.size() > 15 ? label_.size() - 15 : 0).c_str());
    (void)setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), 5);
    for (;;) {
      Job job;
      {
        std::unique_lock lock(mutex_);
        wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
        if (jobs_.empty()) return;
        job = std::move(jobs_.front());
        jobs_.pop_front();
      }
      job();
    }
  }

  std::string label_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Job> jobs_;
  bool stopping_ = false;
  std::thread worker_;
};

}  // namespace

std::unique_ptr<SerialQueue> SerialQueue::makeBackground(const std::string& label) {
  return std::make_unique<ThreadSerialQueue>(label);
}

}  // namespace quillmark
