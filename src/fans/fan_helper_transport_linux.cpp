#include "fans/fan_helper_transport_linux.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace quillmark {
namespace {

// One connection to quillmark-fand. Commands are written from the main thread; a reader thread
// delivers the replies. When the stream ends every command still waiting gets onError, then the
// invalidation handler runs, once.
class SocketConnection final : public FanHelperConnection {
 public:
  SocketConnection(int fd, std::function<void()> onInvalidated)
      : fd_(fd), onInvalidated_(std::move(onInvalidated)), reader_([this] { readLoop(); }) {}

  ~SocketConnection() override {
    invalidate();
    reader_.join();
    ::close(fd_);
  }

  void send(const FanRequest& request, ReplyHandler reply, ErrorHandler onError) override {
    {
      std::lock_guard lock(mutex_);
      if (closed_) {
        if (onError) onError("connection closed");
        return;
      }
      // Heartbeats are never answered; remembering them would only pile up.
      if (request.op != FanOp::heartbeat && (reply || onError)) {
        pending_[request.id] = {std::move(reply), std::move(onError)};
      }
    }
    const std::string line = FanProtocol::encodeRequest(request);
    if (::send(fd_, line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size())) {
      // The reader sees the broken stream and fails what is pending, this command included.
      invalidate();
    }
  }

  void invalidate() override { ::shutdown(fd_, SHUT_RDWR); }

 private:
  struct Pending {
    ReplyHandler reply;
    ErrorHandler onError;
  };

  void readLoop() {
    LineSplitter splitter;
    std::string lastError = "connection closed";
    std::array<char, 4096> buffer{};
    for (;;) {
      const ssize_t got = ::recv(fd_, buffer.data(), buffer.size(), 0);
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) break;
      for (const std::string& line : splitter.feed({buffer.data(), static_cast<std::size_t>(got)})) {
        std::string error;
        auto reply = FanProtocol::decodeReply(line, error);
        if (!reply) continue;  // a reply we cannot read is no answer: the command's reply never runs
        if (reply->id == 0 && !reply->ok) lastError = "helper refused: " + reply->error;
        Pending pending = take(reply->id);
        if (pending.reply) pending.reply(std::move(*reply));
      }
      if (splitter.overflowed()) break;
    }
    std::map<std::uint64_t, Pending> orphans;
    {
      std::lock_guard lock(mutex_);
      closed_ = true;
      orphans.swap(pending_);
    }
    for (auto& [id, pending] : orphans) {
      if (pending.onError) pending.onError(lastError);
    }
    if (onInvalidated_) onInvalidated_();
  }

  Pending take(std::uint64_t id) {
    std::lock_guard lock(mutex_);
    const auto it = pending_.find(id);
    if (it == pending_.end()) return {};
    Pending out = std::move(it->second);
    pending_.erase(it);
    return out;
  }

  const int fd_;
  std::function<void()> onInvalidated_;
  std::mutex mutex_;
  std::map<std::uint64_t, Pending> pending_;
  bool closed_ = false;
  std::thread reader_;  // last: starts once everything it reads is initialised
};

}  // namespace

LinuxFanTransport::LinuxFanTransport(std::string socketPath) : socketPath_(std::move(socketPath)) {}

FanHelperTransport::ServiceStatus LinuxFanTransport::status() {
  struct stat info {};
  if (::stat(socketPath_.c_str(), &info) != 0 || !S_ISSOCK(info.st_mode)) return ServiceStatus::notFound;
  return ::access(socketPath_.c_str(), W_OK) == 0 ? ServiceStatus::enabled : ServiceStatus::requiresApproval;
}

std::optional<std::string> LinuxFanTransport::registerService() {
  switch (status()) {
    case ServiceStatus::enabled:
      return std::nullopt;
    case ServiceStatus::requiresApproval:
      return "this user is not in the group \"quillmark\"";
    case ServiceStatus::notRegistered:
    case ServiceStatus::notFound:
      break;
  }
  return "quillmark-fand is not running (" + socketPath_ + " is missing)";
}

std::unique_ptr<FanHelperConnection> LinuxFanTransport::open(std::function<void()> onInvalidated) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (socketPath_.size() >= sizeof address.sun_path) return nullptr;
  std::memcpy(address.sun_path, socketPath_.c_str(), socketPath_.size() + 1);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return nullptr;
  if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    ::close(fd);
    return nullptr;
  }
  // A daemon that stops reading must not stall the main thread for long.
  const timeval limit{1, 0};
  ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  return std::make_unique<SocketConnection>(fd, std::move(onInvalidated));
}

std::unique_ptr<FanHelperTransport> FanHelperTransport::makePlatform() {
  return std::make_unique<LinuxFanTransport>();
}

}  // namespace quillmark
