#include "app/desktop/bus_connection_linux.h"

#include <systemd/sd-bus.h>
#include <time.h>

#include <cstring>

#include "base/log.h"

namespace quillmark {
namespace {

std::uint64_t monotonicMicros() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000u +
         static_cast<std::uint64_t>(now.tv_nsec) / 1000u;
}

}  // namespace

std::unique_ptr<BusConnection> BusConnection::openUser(LinuxMainLoop& loop, std::string& error) {
  sd_bus* bus = nullptr;
  if (const int r = sd_bus_open_user(&bus); r < 0) {
    error = std::string("no session bus: ") + std::strerror(-r);
    return nullptr;
  }
  const int fd = sd_bus_get_fd(bus);
  if (fd < 0) {
    error = std::string("no bus descriptor: ") + std::strerror(-fd);
    sd_bus_flush_close_unref(bus);
    return nullptr;
  }
  auto connection = std::unique_ptr<BusConnection>(new BusConnection(loop, bus, fd));
  // The connection's handshake may already have read messages that no poll will announce.
  loop.post([weak = std::weak_ptr<BusConnection*>(connection->lifetime_)] {
    if (auto self = weak.lock()) (*self)->pump();
  });
  return connection;
}

BusConnection::BusConnection(LinuxMainLoop& loop, sd_bus* bus, int fd) : loop_(loop), bus_(bus), fd_(fd) {
  loop_.watchReadable(fd_, [this] { pump(); });
}

BusConnection::~BusConnection() {
  if (fd_ >= 0) loop_.unwatch(fd_);
  sd_bus_flush_close_unref(bus_);
}

void BusConnection::pump() {
  // A handler that updates the item calls this again from inside the dispatch; the outer call
  // writes its messages out.
  if (fd_ < 0 || pumping_) return;
  pumping_ = true;
  int r = 0;
  while ((r = sd_bus_process(bus_, nullptr)) > 0) {
  }
  pumping_ = false;
  // Our messages are small and the peer is local: writing them out now keeps the loop free of a
  // writability watch.
  if (r >= 0) r = sd_bus_flush(bus_);
  if (r < 0) {
    Log::debug(std::string("Session bus connection lost: ") + std::strerror(-r));
    loop_.unwatch(fd_);
    fd_ = -1;
    if (onDisconnected) onDisconnected();
    return;
  }
  armTimeout();
}

void BusConnection::armTimeout() {
  std::uint64_t deadline = 0;
  if (timeoutArmed_ || sd_bus_get_timeout(bus_, &deadline) < 0 || deadline == UINT64_MAX) return;
  const std::uint64_t now = monotonicMicros();
  const double delay = deadline > now ? static_cast<double>(deadline - now) / 1e6 : 0.0;
  timeoutArmed_ = true;
  loop_.postAfter(delay, [weak = std::weak_ptr<BusConnection*>(lifetime_)] {
    if (auto self = weak.lock()) {
      (*self)->timeoutArmed_ = false;
      (*self)->pump();
    }
  });
}

}  // namespace quillmark
