#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quillmark {

// Runs submitted jobs one at a time, in submission order, off the main thread. async() may be
// called from any thread.
class SerialQueue {
 public:
  using Job = std::function<void()>;
  virtual ~SerialQueue() = default;
  virtual void async(Job job) = 0;

  // A queue with its own worker thread, running at background priority. The label names the
  // thread (cut to what the platform allows) so it shows up in debuggers and `top -H`.
  static std::unique_ptr<SerialQueue> makeBackground(const std::string& label);
};

}  // namespace quillmark
