#pragma once

#include <string>

#include "fans/fan_helper_transport.h"

namespace quillmark {

// The fan helper on Linux: quillmark-fand's Unix socket. There is nothing to register from the
// app (the service is installed by the package and the user joins the group "quillmark"), so the
// status is read off the socket: absent means the daemon is not running (notFound), present but
// not writable means the user is not in the group yet (requiresApproval). Each connection has a
// reader thread that matches replies to commands by id. Main thread only.
class LinuxFanTransport final : public FanHelperTransport {
 public:
  static constexpr const char* kDefaultSocket = "/run/quillmark/fand.sock";

  explicit LinuxFanTransport(std::string socketPath = kDefaultSocket);

  ServiceStatus status() override;
  std::optional<std::string> registerService() override;
  void unregisterService() override {}
  std::unique_ptr<FanHelperConnection> open(std::function<void()> onInvalidated) override;

 private:
  std::string socketPath_;
};

}  // namespace quillmark
