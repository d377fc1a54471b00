// quillmark-fand: the privileged fan helper on Linux. Runs as root under systemd, serves the fan
// protocol on a Unix socket for members of the group "quillmark", and hands every fan back to
// automatic control when its client goes quiet, disconnects, the system sleeps, or it stops.

#include <grp.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "fans/daemon/fan_daemon.h"
#include "fans/daemon/fan_socket_server_linux.h"
#include "fans/daemon/hwmon_fan_backend_linux.h"

namespace {

constexpr const char* kUsage =
    "usage: quillmark-fand [--hwmon-root DIR] [--socket PATH] [--state-file PATH] [--group NAME]\n"
    "                      [--socket-mode OCTAL]\n"
    "\n"
    "Holds fan floors for Quillmark's comfort cooling. Defaults: --hwmon-root /sys/class/hwmon,\n"
    "--socket /run/quillmark/fand.sock, --state-file /run/quillmark/held.json, --group quillmark,\n"
    "--socket-mode 0660.\n";

void logLine(std::string_view line) {
  std::fprintf(stderr, "quillmark-fand: %.*s\n", static_cast<int>(line.size()), line.data());
}

}  // namespace

int main(int argc, char** argv) {
  using namespace quillmark;
  std::string hwmonRoot = "/sys/class/hwmon";
  std::string stateFile = "/run/quillmark/held.json";
  std::string groupName = "quillmark";
  FanSocketServer::Options options{"/run/quillmark/fand.sock", 0660, std::nullopt};
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    const bool hasValue = i + 1 < argc;
    if (arg == "--help") {
      std::fputs(kUsage, stdout);
      return 0;
    } else if (arg == "--hwmon-root" && hasValue) {
      hwmonRoot = argv[++i];
    } else if (arg == "--socket" && hasValue) {
      options.socketPath = argv[++i];
    } else if (arg == "--state-file" && hasValue) {
      stateFile = argv[++i];
    } else if (arg == "--group" && hasValue) {
      groupName = argv[++i];
    } else if (arg == "--socket-mode" && hasValue) {
      char* end = nullptr;
      options.socketMode = static_cast<unsigned>(std::strtoul(argv[++i], &end, 8));
      if (*end != '\0' || options.socketMode > 0777) {
        std::fprintf(stderr, "quillmark-fand: bad socket mode\n%s", kUsage);
        return 2;
      }
    } else {
      std::fprintf(stderr, "quillmark-fand: unknown argument %s\n%s", argv[i], kUsage);
      return 2;
    }
  }
  if (const group* entry = ::getgrnam(groupName.c_str())) {
    options.group = entry->gr_gid;
  } else {
    logLine("group \"" + groupName + "\" not found: only root may connect");
  }

  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGUSR1}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  const int signalFd = signalfd(-1, &signals, SFD_CLOEXEC);
  if (signalFd < 0) {
    logLine(std::string("signalfd: ") + std::strerror(errno));
    return 1;
  }

  HwmonFanBackend backend(hwmonRoot, stateFile);
  // A floor left by a run that crashed is handed back before anything else.
  if (const int restored = backend.restoreLeftovers(); restored > 0) {
    logLine("restored " + std::to_string(restored) + " fan channel(s) left held by an earlier run");
  }
  FanDaemon daemon(backend, Clock::system(), logLine);
  FanSocketServer server(daemon, options);
  std::string error;
  if (!server.listen(error)) {
    logLine(error);
    return 1;
  }
  logLine("listening on " + options.socketPath);
  return server.run(signalFd);
}
