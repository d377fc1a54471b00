#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "fans/daemon/fan_daemon.h"
#include "fans/fan_protocol.h"

namespace quillmark {

// quillmark-fand's front door: a Unix stream socket speaking FanProtocol's JSON lines. Only root
// and members of the allowed group may talk to it; the socket file's mode keeps others out and
// SO_PEERCRED is checked again on every connection. A client that disconnects hands its floor
// back; one that sends an over-long line or does not read its replies is closed; past
// kMaxClients the longest-idle client that holds nothing makes room. The loop itself checks the
// daemon's heartbeat deadline about twice a second. Daemon thread only.
class FanSocketServer {
 public:
  struct Options {
    std::string socketPath;
    unsigned socketMode = 0660;
    std::optional<gid_t> group;  // absent: root alone
  };
  static constexpr std::size_t kMaxClients = 16;

  FanSocketServer(FanDaemon& daemon, Options options);
  ~FanSocketServer();
  FanSocketServer(const FanSocketServer&) = delete;
  FanSocketServer& operator=(const FanSocketServer&) = delete;

  // Creates the socket (replacing a stale one). False with error set when it cannot.
  [[nodiscard]] bool listen(std::string& error);
  // Serves until SIGTERM or SIGINT arrives on signalFd (a signalfd); SIGUSR1 (the system is
  // about to sleep) hands the fans back and carries on. Returns the exit status.
  int run(int signalFd);

 private:
  struct Client {
    int fd = -1;
    FanDaemon::ClientId id = 0;
    double lastActive = 0;
    LineSplitter lines;
  };

  void acceptClient();
  [[nodiscard]] bool permitted(int fd) const;
  // False when the client must be closed.
  [[nodiscard]] bool serve(Client& client);
  [[nodiscard]] bool reply(Client& client, const FanReply& answer);
  void close(std::size_t index);
  [[nodiscard]] bool handleSignal(int signalFd);

  FanDaemon& daemon_;
  Options options_;
  int listenFd_ = -1;
  std::vector<Client> clients_;
  FanDaemon::ClientId nextId_ = 1;
};

}  // namespace quillmark
