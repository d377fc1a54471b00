#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "fans/fan_protocol.h"

namespace quillmark {

// One open connection to the fan helper daemon: XPC to the launchd daemon on macOS, a Unix
// socket to quillmark-fand on Linux.
//
// send() may be called from the main thread only. For each command exactly one of reply and
// onError runs, on any thread, or neither when the connection is lost first (as XPC does);
// heartbeat commands get neither. Destroying the connection invalidates it.
class FanHelperConnection {
 public:
  using ReplyHandler = std::function<void(FanReply)>;
  using ErrorHandler = std::function<void(const std::string& description)>;

  virtual ~FanHelperConnection() = default;
  virtual void send(const FanRequest& request, ReplyHandler reply, ErrorHandler onError) = 0;
  // Closes the connection. The invalidation handler given to open() still runs once.
  virtual void invalidate() = 0;
};

// The platform seam of FanHelperClient: the daemon's registration with the system and opening
// connections to it. Main thread only, except where a handler says otherwise.
class FanHelperTransport {
 public:
  // The registration states as the system reports them (SMAppServiceStatus order on macOS).
  enum class ServiceStatus { notRegistered, enabled, requiresApproval, notFound };

  virtual ~FanHelperTransport() = default;

  [[nodiscard]] virtual ServiceStatus status() = 0;
  // Absent on success, otherwise the system's description of the failure.
  [[nodiscard]] virtual std::optional<std::string> registerService() = 0;
  virtual void unregisterService() = 0;
  // A connection, or nullptr when the daemon cannot be reached at all. onInvalidated runs once,
  // on any thread, when the connection dies for good (the daemon quit, the peer was refused, or
  // invalidate() was called).
  [[nodiscard]] virtual std::unique_ptr<FanHelperConnection> open(std::function<void()> onInvalidated) = 0;

  // This platform's transport: XPC and SMAppService on macOS, quillmark-fand's socket on Linux.
  [[nodiscard]] static std::unique_ptr<FanHelperTransport> makePlatform();
};

}  // namespace quillmark
