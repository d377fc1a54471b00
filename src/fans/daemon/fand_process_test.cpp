// quillmark-fand for real: the daemon runs as a child process on a fake hwmon tree, with its
// socket and state file in a temporary folder, and clients are real processes.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "base/file_util.h"
#include "fans/fan_helper_transport_linux.h"
#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

using quillmark::testing::TempTree;
using namespace std::chrono_literals;

// Waits (really) for a condition that another process makes true, up to a limit.
bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(20ms);
  }
  return true;
}

int connectTo(const std::string& path) {
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

// Sends one line and returns the reply line ("" when the daemon closed the connection or
// said nothing within 5 s). A refused client may find the connection closed before it sends,
// with the refusal already waiting, so the reply is read either way.
std::string ask(int fd, const std::string& line) {
  (void)::send(fd, line.data(), line.size(), MSG_NOSIGNAL);
  std::string reply;
  char c = 0;
  pollfd p{fd, POLLIN, 0};
  while (::poll(&p, 1, 5000) == 1 && ::recv(fd, &c, 1, 0) == 1) {
    if (c == '\n') return reply;
    reply.push_back(c);
  }
  return reply;
}

class FandProcessTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tree.write("hwmon/hwmon0/name", "thinkpad\n");
    tree.write("hwmon/hwmon0/pwm1", "77\n");
    tree.write("hwmon/hwmon0/pwm1_enable", "2\n");
    tree.write("hwmon/hwmon0/fan1_input", "2100\n");
    tree.write("hwmon/hwmon0/fan1_max", "5100\n");
    ::chmod(tree.root().c_str(), 0755);  // a client of another uid must reach the socket
  }
  void TearDown() override {
    if (daemon > 0) {
      ::kill(daemon, SIGKILL);
      ::waitpid(daemon, nullptr, 0);
    }
  }

  // Starts the daemon and waits until it answers. The group does not exist, so only root may use
  // it; the socket is world-writable so the credential check, not the file mode, must refuse.
  void startDaemon() {
    daemon = ::fork();
    if (daemon == 0) {
      const int devnull = ::open("/dev/null", O_WRONLY);
      ::dup2(devnull, STDERR_FILENO);
      ::execl(QM_FAND_PATH, QM_FAND_PATH, "--hwmon-root", tree.path("hwmon").c_str(), "--socket",
              socket.c_str(), "--state-file", state.c_str(), "--group", "quillmark-test-no-such-group",
              "--socket-mode", "0666", static_cast<char*>(nullptr));
      ::_exit(127);
    }
    ASSERT_TRUE(eventually(
        [&] {
          const int fd = connectTo(socket);
          if (fd < 0) return false;
          ::close(fd);
          return true;
        },
        5000ms));
  }
  std::string enable() { return readWholeFile(tree.path("hwmon/hwmon0/pwm1_enable")).value_or("?"); }
  bool handedBack() {
    return enable() == "2\n" && readWholeFile(tree.path("hwmon/hwmon0/pwm1")).value_or("") == "77\n";
  }
  // A client process that sets a floor, says so through a pipe, and waits to be killed.
  pid_t floorHoldingClient() {
    int ready[2];
    EXPECT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      const int fd = connectTo(socket);
      const bool ok =
          fd >= 0 && ask(fd, "{\"op\":\"setFanFloor\",\"id\":1,\"rpm\":3000}\n") == "{\"id\":1,\"ok\":true}";
      (void)!::write(ready[1], ok ? "y" : "n", 1);
      ::pause();
      ::_exit(0);
    }
    ::close(ready[1]);
    char answer = 0;
    EXPECT_EQ(::read(ready[0], &answer, 1), 1);
    ::close(ready[0]);
    EXPECT_EQ(answer, 'y');
    return child;
  }

  TempTree tree;
  std::string socket = tree.path("fand.sock");
  std::string state = tree.path("held.json");
  pid_t daemon = -1;
};

TEST_F(FandProcessTest, AKilledClientsFloorIsHandedBackWithinTenSeconds) {
  startDaemon();
  const pid_t client = floorHoldingClient();
  EXPECT_EQ(enable(), "1\n");
  EXPECT_EQ(readWholeFile(tree.path("hwmon/hwmon0/pwm1")).value_or(""), "150\n");  // ceil(3000/5100 x 255)
  ::kill(client, SIGKILL);
  ::waitpid(client, nullptr, 0);
  EXPECT_TRUE(eventually([&] { return handedBack(); }, 10000ms));
}

// The system-sleep hook sends SIGUSR1 before a suspend: the fans go back to the firmware at once
// even though the client still holds its floor, so they cannot wake up stuck at it; the daemon
// stays up for the next floor.
TEST_F(FandProcessTest, SleepHandsBackAHeldFloorAndTheDaemonServesOn) {
  startDaemon();
  const pid_t client = floorHoldingClient();
  ASSERT_EQ(enable(), "1\n");
  ::kill(daemon, SIGUSR1);
  EXPECT_TRUE(eventually([&] { return handedBack(); }, 2000ms));
  const int fd = connectTo(socket);
  EXPECT_EQ(ask(fd, "{\"op\":\"setFanFloor\",\"id\":4,\"rpm\":3000}\n"), "{\"id\":4,\"ok\":true}");
  EXPECT_EQ(enable(), "1\n");
  ::close(fd);
  ::kill(client, SIGKILL);
  ::waitpid(client, nullptr, 0);
}

TEST_F(FandProcessTest, AClientOfAnotherUserIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root to run a client as another user";
  const passwd* nobody = ::getpwnam("nobody");
  if (nobody == nullptr) GTEST_SKIP() << "no user \"nobody\" on this machine";
  startDaemon();
  const pid_t child = ::fork();
  if (child == 0) {
    if (::setgroups(0, nullptr) != 0 || ::setgid(nobody->pw_gid) != 0 || ::setuid(nobody->pw_uid) != 0)
      ::_exit(3);
    const int fd = connectTo(socket);
    if (fd < 0) ::_exit(4);
    const std::string reply = ask(fd, "{\"op\":\"setFanFloor\",\"id\":1,\"rpm\":3000}\n");
    ::_exit(reply == "{\"error\":\"not permitted\",\"id\":0,\"ok\":false}" ? 0 : 5);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(enable(), "2\n");
}

TEST_F(FandProcessTest, AStartAfterACrashRestoresTheLeftOverFloorAndAStopHandsBack) {
  startDaemon();
  const int fd = connectTo(socket);
  ASSERT_EQ(ask(fd, "{\"op\":\"setFanFloor\",\"id\":2,\"rpm\":4000}\n"), "{\"id\":2,\"ok\":true}");
  ::kill(daemon, SIGKILL);  // the daemon crashes holding the floor
  ::waitpid(daemon, nullptr, 0);
  ::close(fd);
  ASSERT_EQ(enable(), "1\n");
  startDaemon();
  EXPECT_TRUE(handedBack());  // before it even answered

  const int again = connectTo(socket);
  ASSERT_EQ(ask(again, "{\"op\":\"setFanFloor\",\"id\":3,\"rpm\":4000}\n"), "{\"id\":3,\"ok\":true}");
  ::kill(daemon, SIGTERM);
  int status = 0;
  ::waitpid(daemon, &status, 0);
  daemon = -1;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_TRUE(handedBack());
  ::close(again);
}

TEST_F(FandProcessTest, GarbageAndFloodsGetErrorsOrClosedConnectionsNeverACrash) {
  startDaemon();
  const int fd = connectTo(socket);
  EXPECT_EQ(ask(fd, "{\"op\":\"setFanFloor\",\"rpm\":-5}\n"),
            "{\"error\":\"rpm out of range\",\"id\":0,\"ok\":false}");
  EXPECT_EQ(ask(fd, "\x01\x02garbage\n"), "{\"error\":\"not JSON\",\"id\":0,\"ok\":false}");
  EXPECT_EQ(ask(fd, "{\"op\":\"reboot\",\"id\":9}\n"), "{\"error\":\"unknown op\",\"id\":0,\"ok\":false}");
  // An endless line is cut off with an error and the connection closed.
  const std::string endless(70000, '{');
  (void)::send(fd, endless.data(), endless.size(), MSG_NOSIGNAL);
  char c = 0;
  std::string rest;
  while (::recv(fd, &c, 1, 0) == 1) rest.push_back(c);
  EXPECT_EQ(rest, "{\"error\":\"message too long\",\"id\":0,\"ok\":false}\n");
  ::close(fd);

  std::vector<int> flood;
  for (int i = 0; i < 64; ++i) flood.push_back(connectTo(socket));
  const int late = connectTo(socket);
  EXPECT_EQ(ask(late, "{\"op\":\"getVersion\",\"id\":4}\n"), "{\"id\":4,\"ok\":true,\"version\":\"1.0\"}");
  for (const int f : flood) ::close(f);
  ::close(late);
  EXPECT_EQ(::waitpid(daemon, nullptr, WNOHANG), 0);  // still running
}

TEST_F(FandProcessTest, TheAppsTransportMatchesRepliesAndNoticesTheDaemonGoing) {
  LinuxFanTransport transport(socket);
  EXPECT_EQ(transport.status(), FanHelperTransport::ServiceStatus::notFound);
  EXPECT_EQ(transport.open([] {}), nullptr);
  startDaemon();
  EXPECT_EQ(transport.status(), FanHelperTransport::ServiceStatus::enabled);

  std::promise<void> invalidated;
  auto connection = transport.open([&] { invalidated.set_value(); });
  ASSERT_NE(connection, nullptr);
  std::promise<FanReply> floor;
  std::promise<FanReply> fans;
  std::promise<std::string> lost;
  connection->send(
      {FanOp::setFanFloor, 11, 2000}, [&](FanReply r) { floor.set_value(r); }, nullptr);
  connection->send({FanOp::heartbeat, 12, 0}, nullptr, nullptr);
  connection->send(
      {FanOp::readFans, 13, 0}, [&](FanReply r) { fans.set_value(r); }, nullptr);
  EXPECT_TRUE(floor.get_future().get().ok);
  const FanReply list = fans.get_future().get();
  ASSERT_EQ(list.fans.size(), 1u);
  EXPECT_TRUE(list.fans[0].forced);
  EXPECT_EQ(list.fans[0].maxRPM, 5100);

  // The daemon dies: the command still waiting fails, and the connection reports itself dead.
  ::kill(daemon, SIGSTOP);
  connection->send(
      {FanOp::getVersion, 14, 0}, [](FanReply) {}, [&](const std::string& e) { lost.set_value(e); });
  ::kill(daemon, SIGKILL);
  ::waitpid(daemon, nullptr, 0);
  daemon = -1;
  EXPECT_EQ(lost.get_future().get(), "connection closed");
  EXPECT_EQ(invalidated.get_future().wait_for(5s), std::future_status::ready);
}

}  // namespace
}  // namespace quillmark
