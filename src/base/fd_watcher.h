#pragma once

#include "base/main_loop.h"

namespace quillmark {

// The part of a Linux main loop that watches file descriptors: a bus connection's socket, a
// signalfd. Kept apart from MainLoop because the macOS loop and the virtual-time loop have no use
// for it; the poll loop and the GLib loop of the desktop program implement both. Main thread only.
class FdWatcher {
 public:
  virtual ~FdWatcher() = default;

  // Calls onReadable on the loop's thread whenever fd is readable.
  virtual void watchReadable(int fd, MainLoop::Task onReadable) = 0;
  // Ends every watch of fd; a watch's own task may call it.
  virtual void unwatch(int fd) = 0;
};

}  // namespace quillmark
