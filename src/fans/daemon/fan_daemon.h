#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "fans/daemon/fan_backend.h"
#include "fans/fan_protocol.h"

namespace quillmark {

// What both helper daemons do with a command, whatever carried it (XPC or the Unix socket).
// One client at a time holds the floor, and only it (or anyone, while nothing is held) may
// release it; the fans go back to automatic control when that client
// disconnects, when its heartbeats stop for kHeartbeatTimeoutSeconds, and whenever the program
// around it says so (system sleep, stop). While holding, an overheating CPU sends the fans to
// full speed. Times come from the injected clock; poll() must be called about once a second.
// Daemon thread only.
class FanDaemon {
 public:
  using ClientId = std::uint64_t;
  using LogSink = std::function<void(std::string_view)>;
  static constexpr double kHeartbeatTimeoutSeconds = 10.0;

  FanDaemon(FanBackend& backend, const Clock& clock, LogSink log);

  // The answer to one command; absent for heartbeats, which are one-way.
  [[nodiscard]] std::optional<FanReply> handle(ClientId client, const FanRequest& request);
  // The client's connection closed (or was closed for bad input).
  void clientGone(ClientId client);
  // Checks the heartbeat deadline and the critical temperatures.
  void poll();
  // Hands the fans back now; why is logged.
  void releaseAll(std::string_view why);

  [[nodiscard]] std::optional<ClientId> holder() const { return holder_; }

 private:
  FanBackend& backend_;
  const Clock& clock_;
  LogSink log_;
  std::optional<ClientId> holder_;
  double lastSign_ = 0;  // monotonic time of the holder's last floor or heartbeat
  bool fullSpeed_ = false;
};

}  // namespace quillmark
