#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/linux_main_loop.h"
#include "base/main_loop.h"

struct sd_bus;

namespace quillmark {

// A session-bus connection driven by the program's main loop: its socket is watched through the
// loop, and while an asynchronous call waits for its reply a one-shot wake-up covers the
// call's timeout. Handlers registered on get() run inside pump(), on the main thread. Nothing here
// polls: an idle connection costs nothing. Main thread only.
class BusConnection {
 public:
  // Absent, with a sentence in error, when there is no session bus.
  [[nodiscard]] static std::unique_ptr<BusConnection> openUser(LinuxMainLoop& loop, std::string& error);
  ~BusConnection();
  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;

  [[nodiscard]] sd_bus* get() const { return bus_; }
  [[nodiscard]] bool connected() const { return fd_ >= 0; }
  // Dispatches whatever has arrived and writes out what is queued. Call it after queueing a
  // message from outside a handler, so it leaves now rather than with the next incoming one.
  void pump();

  // Called once when the connection is lost.
  std::function<void()> onDisconnected;

 private:
  BusConnection(LinuxMainLoop& loop, sd_bus* bus, int fd);
  void armTimeout();

  LinuxMainLoop& loop_;
  sd_bus* bus_ = nullptr;
  int fd_ = -1;
  bool timeoutArmed_ = false;
  bool pumping_ = false;
  std::shared_ptr<BusConnection*> lifetime_ = std::make_shared<BusConnection*>(this);
};

}  // namespace quillmark
