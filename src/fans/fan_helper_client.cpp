#include "fans/fan_helper_client.h"

#include <utility>

#include "base/log.h"

namespace quillmark {

FanHelperClient::FanHelperClient(FanHelperTransport& transport, MainLoop& loop)
    : transport_(transport), loop_(loop), lifetime_(std::make_shared<FanHelperClient*>(this)) {
  refreshState();
}

FanHelperClient::~FanHelperClient() {
  *lifetime_ = nullptr;
  stopHeartbeat();
  if (connection_) connection_->invalidate();
}

std::string_view FanHelperClient::stateName(State value) {
  switch (value) {
    case State::notRegistered:
      return "notRegistered";
    case State::requiresApproval:
      return "requiresApproval";
    case State::enabled:
      return "enabled";
    case State::unavailable:
      return "unavailable";
  }
  return "unavailable";
}

void FanHelperClient::refreshState() {
  using Status = FanHelperTransport::ServiceStatus;
  switch (transport_.status()) {
    case Status::notRegistered:
      state.set(State::notRegistered);
      return;
    case Status::enabled:
      state.set(State::enabled);
      return;
    case Status::requiresApproval:
      state.set(State::requiresApproval);
      return;
    case Status::notFound:
      break;
  }
  state.set(State::unavailable);
}

bool FanHelperClient::registerDaemon() {
  const auto failure = transport_.registerService();
  refreshState();
  if (failure) {
    Log::debug("Helper registration failed: " + *failure + "; state=" + std::string(stateName(state())));
  }
  return !failure;
}

void FanHelperClient::unregister() {
  transport_.unregisterService();
  stopHeartbeat();
  if (connection_) {
    connection_->invalidate();
    connection_.reset();
  }
  refreshState();
}

FanHelperConnection* FanHelperClient::proxy() {
  if (connection_) return connection_.get();
  const std::uint64_t generation = ++connectionGeneration_;
  std::weak_ptr<FanHelperClient*> weak = lifetime_;
  MainLoop& loop = loop_;
  connection_ = transport_.open([&loop, weak, generation] {
    loop.post([weak, generation] {
      const auto alive = weak.lock();
      if (!alive || *alive == nullptr) return;
      FanHelperClient& self = **alive;
      if (self.connectionGeneration_ == generation) self.connection_.reset();
    });
  });
  return connection_.get();
}

bool FanHelperClient::send(FanRequest request, std::function<void(FanReply)> reply) {
  FanHelperConnection* connection = proxy();
  if (connection == nullptr) return false;
  request.id = nextId_++;
  std::weak_ptr<FanHelperClient*> weak = lifetime_;
  MainLoop& loop = loop_;
  FanHelperConnection::ReplyHandler onReply;
  if (reply) {
    onReply = [&loop, weak, reply = std::move(reply)](FanReply answer) {
      loop.post([weak, reply, answer = std::move(answer)]() mutable {
        const auto alive = weak.lock();
        if (alive && *alive != nullptr) reply(std::move(answer));
      });
    };
  }
  connection->send(request, std::move(onReply), [&loop](const std::string& description) {
    loop.post([description] { Log::debug("Helper XPC error: " + description); });
  });
  return true;
}

void FanHelperClient::version(std::function<void(std::optional<std::string>)> reply) {
  const bool sent = send({FanOp::getVersion}, [reply](FanReply answer) {
    reply(answer.ok ? std::optional<std::string>(std::move(answer.version)) : std::nullopt);
  });
  if (!sent) reply(std::nullopt);
}

void FanHelperClient::readFans(std::function<void(std::vector<FanReading>)> reply) {
  const bool sent = send({FanOp::readFans}, [reply](FanReply answer) {
    reply(answer.ok ? std::move(answer.fans) : std::vector<FanReading>{});
  });
  if (!sent) reply({});
}

void FanHelperClient::setFanFloor(int rpm, std::function<void(bool)> reply) {
  const bool sent = send({FanOp::setFanFloor, 0, rpm}, [reply](FanReply answer) { reply(answer.ok); });
  if (!sent) {
    reply(false);
    return;
  }
  if (heartbeat_ != 0) return;
  heartbeat_ =
      loop_.addRepeatingTimer(kHeartbeatSeconds, [this] { (void)send({FanOp::heartbeat}, nullptr); });
}

void FanHelperClient::releaseControl(std::function<void(bool)> reply) {
  const bool sent = send({FanOp::releaseControl}, [reply](FanReply answer) { reply(answer.ok); });
  if (!sent) {
    reply(false);
    return;
  }
  stopHeartbeat();
}

void FanHelperClient::stopHeartbeat() {
  if (heartbeat_ == 0) return;
  loop_.cancelTimer(heartbeat_);
  heartbeat_ = 0;
}

}  // namespace quillmark
