#pragma once

#include "base/main_loop.h"

namespace quillmark {

// A Linux main loop that also watches file descriptors and can be run and quit: PollMainLoop for
// the terminal modes, GlibMainLoop where GTK's main context must turn (the desktop program).
// Services that speak over a socket (sd-bus, a pipe to a bar) take this instead of a concrete loop.
class LinuxMainLoop : public MainLoop {
 public:
  // Calls onReadable on the loop's thread whenever fd is readable (or has hung up or failed).
  // Main thread only.
  virtual void watchReadable(int fd, Task onReadable) = 0;
  // Calls onWritable on the loop's thread whenever fd can take more bytes (or has failed), until
  // unwatch(fd). Watch only while there is something to write, or the loop spins. Main thread only.
  virtual void watchWritable(int fd, Task onWritable) = 0;
  // Ends every watch of fd. Main thread only; a watch's own task may call it.
  virtual void unwatch(int fd) = 0;

  // Runs until quit(); quit() may be called from any thread.
  virtual void run() = 0;
  virtual void quit() = 0;

  // Makes loop the one MainLoop::main() returns (PollMainLoop::shared() unless a program chose
  // another). Call first thing in main, before any service asks for the main loop.
  static void useAsMain(LinuxMainLoop& loop);
  static LinuxMainLoop& main();
};

}  // namespace quillmark
