#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fans/fan_helper_transport.h"

namespace quillmark::testing {

// A scripted daemon for FanHelperClient tests. Commands are recorded with their handlers so a
// test decides when (and whether) each is answered, fails, or the connection dies. Handlers run
// synchronously on the test's thread, as a transport on another thread would before the client
// moves them to the main loop.
class FakeFanTransport final : public FanHelperTransport {
 public:
  struct Sent {
    FanRequest request;
    FanHelperConnection::ReplyHandler reply;
    FanHelperConnection::ErrorHandler onError;
    int connection = 0;  // which opened connection carried it, from 1
  };

  ServiceStatus serviceStatus = ServiceStatus::enabled;
  // What registerService() does: an error text, and the status it leaves behind.
  std::optional<std::string> registerError;
  std::optional<ServiceStatus> statusAfterRegister;
  bool reachable = true;
  int opened = 0;
  int registrations = 0;
  int unregistrations = 0;
  std::vector<Sent> sent;

  ServiceStatus status() override { return serviceStatus; }
  std::optional<std::string> registerService() override {
    ++registrations;
    if (statusAfterRegister) serviceStatus = *statusAfterRegister;
    return registerError;
  }
  void unregisterService() override { ++unregistrations; }

  std::unique_ptr<FanHelperConnection> open(std::function<void()> onInvalidated) override {
    if (!reachable) return nullptr;
    ++opened;
    invalidators_.push_back(std::move(onInvalidated));
    return std::make_unique<Connection>(*this, opened);
  }

  // The system reports connection n (from 1) dead.
  void invalidate(int n) { invalidators_.at(static_cast<std::size_t>(n - 1))(); }

  std::vector<FanOp> ops() const {
    std::vector<FanOp> out;
    for (const auto& s : sent) out.push_back(s.request.op);
    return out;
  }
  int count(FanOp op) const {
    int n = 0;
    for (const auto& s : sent) n += s.request.op == op ? 1 : 0;
    return n;
  }
  // Answers every unanswered command: floors and releases with ok, reads with fans.
  void answerAll(bool ok, const std::vector<FanReading>& fans = {}) {
    for (; answered_ < sent.size(); ++answered_) {
      Sent& s = sent[answered_];
      if (!s.reply) continue;
      FanReply reply{s.request.id, ok, "1.0",
                     s.request.op == FanOp::readFans ? fans : std::vector<FanReading>{}, ""};
      s.reply(reply);
    }
  }

 private:
  class Connection final : public FanHelperConnection {
   public:
    Connection(FakeFanTransport& owner, int number) : owner_(owner), number_(number) {}
    void send(const FanRequest& request, ReplyHandler reply, ErrorHandler onError) override {
      owner_.sent.push_back({request, std::move(reply), std::move(onError), number_});
    }
    void invalidate() override {}

   private:
    FakeFanTransport& owner_;
    int number_;
  };

  std::vector<std::function<void()>> invalidators_;
  std::size_t answered_ = 0;
};

}  // namespace quillmark::testing
