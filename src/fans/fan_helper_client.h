#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/main_loop.h"
#include "base/published.h"
#include "base/shared_instance.h"
#include "fans/fan_helper_transport.h"

namespace quillmark {

// The application's side of the privileged fan helper: registers the daemon with the system,
// keeps one lazily opened connection (dropped when the system invalidates it, reopened by the
// next command), sends commands, and while the daemon holds a fan floor sends a heartbeat every
// 2.0 s from a single timer so the daemon knows the application is alive.
//
// Every reply block runs on the main thread, and never after the client is destroyed. A command
// that fails in transport logs "Helper XPC error: ..." and its reply never runs. Main thread only.
class FanHelperClient {
 public:
  enum class State { notRegistered, requiresApproval, enabled, unavailable };
  static constexpr double kHeartbeatSeconds = 2.0;

  FanHelperClient(FanHelperTransport& transport, MainLoop& loop);
  ~FanHelperClient();
  FanHelperClient(const FanHelperClient&) = delete;
  FanHelperClient& operator=(const FanHelperClient&) = delete;

  static FanHelperClient& shared() { return SharedInstance<FanHelperClient>::get(); }

  Published<State> state{State::notRegistered};

  // Copies the daemon service's registration status into state.
  void refreshState();
  // Registers the daemon service; true on success. On first use the system usually refuses
  // until the user approves the daemon, and state becomes requiresApproval.
  [[nodiscard]] bool registerDaemon();
  // Unregisters, and drops the connection and the heartbeat.
  void unregister();

  void version(std::function<void(std::optional<std::string>)> reply);
  // The daemon's fan list; empty at once when the daemon cannot be reached.
  void readFans(std::function<void(std::vector<FanReading>)> reply);
  // Asks the daemon to hold every fan at or above rpm and starts the heartbeat (whatever the
  // answer). reply(false) at once, and no heartbeat, when the daemon cannot be reached.
  void setFanFloor(int rpm, std::function<void(bool)> reply);
  // Hands the fans back to the system and stops the heartbeat. reply(false) at once when the
  // daemon cannot be reached (the heartbeat then keeps running).
  void releaseControl(std::function<void(bool)> reply);

  [[nodiscard]] bool heartbeatRunning() const { return heartbeat_ != 0; }
  [[nodiscard]] static std::string_view stateName(State state);

 private:
  // The open connection, opening one if there is none; nullptr when the daemon is unreachable.
  FanHelperConnection* proxy();
  // Sends through proxy(); reply runs on the main thread with the daemon's answer.
  bool send(FanRequest request, std::function<void(FanReply)> reply);
  void stopHeartbeat();

  FanHelperTransport& transport_;
  MainLoop& loop_;
  std::unique_ptr<FanHelperConnection> connection_;
  std::uint64_t connectionGeneration_ = 0;  // tells a late invalidation of an older connection apart
  MainLoop::TimerId heartbeat_ = 0;
  std::uint64_t nextId_ = 1;
  // Handlers that arrive from other threads check this on the main thread before touching us.
  std::shared_ptr<FanHelperClient*> lifetime_;
};

}  // namespace quillmark
