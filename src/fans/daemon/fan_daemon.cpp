#include "fans/daemon/fan_daemon.h"

#include <string>
#include <utility>

namespace quillmark {

FanDaemon::FanDaemon(FanBackend& backend, const Clock& clock, LogSink log)
    : backend_(backend), clock_(clock), log_(std::move(log)) {}

std::optional<FanReply> FanDaemon::handle(ClientId client, const FanRequest& request) {
  FanReply reply;
  reply.id = request.id;
  switch (request.op) {
    case FanOp::heartbeat:
      if (holder_ == client) lastSign_ = clock_.monotonicNow();
      return std::nullopt;
    case FanOp::getVersion:
      reply.ok = true;
      reply.version = std::string(kFanHelperVersion);
      return reply;
    case FanOp::readFans:
      reply.ok = true;
      reply.fans = backend_.readFans();
      return reply;
    case FanOp::setFanFloor:
      // A new floor from anyone replaces the old one; the last client to set it keeps it alive.
      reply.ok = backend_.holdFloor(static_cast<int>(request.rpm));
      if (!reply.ok) {
        reply.error = "no fan could be set";
        if (holder_) releaseAll("floor failed");
        return reply;
      }
      if (holder_ != client) log_("fan floor taken by client " + std::to_string(client));
      holder_ = client;
      lastSign_ = clock_.monotonicNow();
      fullSpeed_ = false;
      if (backend_.overheating()) poll();
      return reply;
    case FanOp::releaseControl:
      // Another program of the user (a second instance, a terminal mode quitting) must not take
      // the fans from the client that holds them.
      if (holder_ && holder_ != client) {
        reply.error = "held by another client";
        return reply;
      }
      reply.ok = backend_.restore();
      if (holder_) log_("fans released by client " + std::to_string(client));
      holder_.reset();
      fullSpeed_ = false;
      return reply;
  }
  reply.error = "unknown op";
  return reply;
}

void FanDaemon::clientGone(ClientId client) {
  if (holder_ == client) releaseAll("client disconnected");
}

void FanDaemon::poll() {
  if (!holder_) return;
  if (clock_.monotonicNow() - lastSign_ >= kHeartbeatTimeoutSeconds) {
    releaseAll("no heartbeat for 10 s");
    return;
  }
  if (!fullSpeed_ && backend_.overheating()) {
    log_("CPU at its critical temperature: fans to full speed");
    backend_.fullSpeed();
    fullSpeed_ = true;
  }
}

void FanDaemon::releaseAll(std::string_view why) {
  const bool restored = backend_.restore();
  log_(std::string("fans handed back (") + std::string(why) +
       (restored ? ")" : "; some could not be restored)"));
  holder_.reset();
  fullSpeed_ = false;
}

}  // namespace quillmark
