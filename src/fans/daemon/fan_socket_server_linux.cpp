#include "fans/daemon/fan_socket_server_linux.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "base/clock.h"

namespace quillmark {
namespace {

constexpr int kPollMilliseconds = 500;

}  // namespace

FanSocketServer::FanSocketServer(FanDaemon& daemon, Options options)
    : daemon_(daemon), options_(std::move(options)) {}

FanSocketServer::~FanSocketServer() {
  while (!clients_.empty()) close(clients_.size() - 1);
  if (listenFd_ >= 0) {
    ::close(listenFd_);
    ::unlink(options_.socketPath.c_str());
  }
}

bool FanSocketServer::listen(std::string& error) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (options_.socketPath.size() >= sizeof address.sun_path) {
    error = "socket path too long";
    return false;
  }
  std::memcpy(address.sun_path, options_.socketPath.c_str(), options_.socketPath.size() + 1);
  listenFd_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (listenFd_ < 0) {
    error = std::string("socket: ") + std::strerror(errno);
    return false;
  }
  ::unlink(options_.socketPath.c_str());
  // Created with no access at all, then opened up to exactly the group: never briefly wider.
  const mode_t old = ::umask(0777);
  const int bound = ::bind(listenFd_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  ::umask(old);
  if (bound != 0) {
    error = std::string("bind: ") + std::strerror(errno);
    return false;
  }
  if (options_.group && ::chown(options_.socketPath.c_str(), static_cast<uid_t>(-1), *options_.group) != 0) {
    error = std::string("chown: ") + std::strerror(errno);
    return false;
  }
  if (::chmod(options_.socketPath.c_str(), options_.socketMode) != 0 || ::listen(listenFd_, 8) != 0) {
    error = std::string("listen: ") + std::strerror(errno);
    return false;
  }
  return true;
}

bool FanSocketServer::permitted(int fd) const {
  ucred peer{};
  socklen_t length = sizeof peer;
  if (::getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &length) != 0) return false;
  if (peer.uid == 0) return true;
  if (!options_.group) return false;
  if (peer.gid == *options_.group) return true;
  std::array<gid_t, 256> groups{};
  socklen_t size = sizeof groups;
  if (::getsockopt(fd, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) return false;
  const auto end = groups.begin() + size / sizeof(gid_t);
  return std::find(groups.begin(), end, *options_.group) != end;
}

void FanSocketServer::acceptClient() {
  const int fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
  if (fd < 0) return;
  if (!permitted(fd)) {
    const std::string refusal = FanProtocol::encodeReply({0, false, "", {}, "not permitted"});
    (void)::send(fd, refusal.data(), refusal.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    ::close(fd);
    return;
  }
  if (clients_.size() >= kMaxClients) {
    // The longest-idle client that holds nothing gives way; the holder is never dropped here.
    std::size_t victim = clients_.size();
    for (std::size_t i = 0; i < clients_.size(); ++i) {
      if (daemon_.holder() == clients_[i].id) continue;
      if (victim == clients_.size() || clients_[i].lastActive < clients_[victim].lastActive) victim = i;
    }
    if (victim == clients_.size()) {
      ::close(fd);
      return;
    }
    close(victim);
  }
  clients_.push_back({fd, nextId_++, Clock::system().monotonicNow(), {}});
}

bool FanSocketServer::reply(Client& client, const FanReply& answer) {
  const std::string line = FanProtocol::encodeReply(answer);
  // A client that lets its replies pile up is not the app; it is not waited for.
  const ssize_t sent = ::send(client.fd, line.data(), line.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  return sent == static_cast<ssize_t>(line.size());
}

bool FanSocketServer::serve(Client& client) {
  std::array<char, 4096> buffer{};
  const ssize_t got = ::recv(client.fd, buffer.data(), buffer.size(), 0);
  if (got == 0) return false;
  if (got < 0) return errno == EAGAIN || errno == EINTR;
  client.lastActive = Clock::system().monotonicNow();
  for (const std::string& line :
       client.lines.feed(std::string_view(buffer.data(), static_cast<std::size_t>(got)))) {
    std::string error;
    const auto request = FanProtocol::decodeRequest(line, error);
    if (!request) {
      if (!reply(client, {0, false, "", {}, error})) return false;
      continue;
    }
    if (const auto answer = daemon_.handle(client.id, *request)) {
      if (!reply(client, *answer)) return false;
    }
  }
  if (client.lines.overflowed()) {
    (void)reply(client, {0, false, "", {}, "message too long"});
    return false;
  }
  return true;
}

void FanSocketServer::close(std::size_t index) {
  const FanDaemon::ClientId id = clients_[index].id;
  ::close(clients_[index].fd);
  clients_.erase(clients_.begin() + static_cast<std::ptrdiff_t>(index));
  daemon_.clientGone(id);
}

bool FanSocketServer::handleSignal(int signalFd) {
  signalfd_siginfo info{};
  if (::read(signalFd, &info, sizeof info) != static_cast<ssize_t>(sizeof info)) return true;
  if (info.ssi_signo == SIGUSR1) {
    daemon_.releaseAll("system going to sleep");
    return true;
  }
  daemon_.releaseAll("daemon stopping");
  return false;
}

int FanSocketServer::run(int signalFd) {
  for (;;) {
    std::vector<pollfd> fds{{signalFd, POLLIN, 0}, {listenFd_, POLLIN, 0}};
    for (const Client& client : clients_) fds.push_back({client.fd, POLLIN, 0});
    const int ready = ::poll(fds.data(), fds.size(), kPollMilliseconds);
    if (ready < 0 && errno != EINTR) {
      daemon_.releaseAll("poll failed");
      return 1;
    }
    if (ready > 0) {
      if ((fds[0].revents & POLLIN) && !handleSignal(signalFd)) return 0;
      // Clients first, by descending index so closing one does not shift the rest.
      for (std::size_t i = fds.size() - 1; i >= 2; --i) {
        if (fds[i].revents == 0) continue;
        if (!serve(clients_[i - 2])) close(i - 2);
      }
      if (fds[1].revents & POLLIN) acceptClient();
    }
    daemon_.poll();
  }
}

}  // namespace quillmark
