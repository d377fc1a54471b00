// The Linux front end until the panel exists: prints the status-item text once per tick, or with
// --json every applied snapshot as one JSON line, for terminals and status bars (waybar, tmux,
// i3bar). SIGINT and SIGTERM end it cleanly; so does a reader that goes away.

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

#include "app/frontend/front_end.h"
#include "app/log.h"
#include "base/poll_main_loop.h"
#include "sampling/monitor.h"
#include "settings/settings_manager.h"

namespace {

constexpr const char* kUsage =
    "usage: quillmark [--json] [--count N]\n"
    "\n"
    "Prints the menu-bar text of Quillmark (\"CPU 12% MEM 63%\") once per refresh interval.\n"
    "  --json       print every measurement as one JSON line instead (all fields, null when absent)\n"
    "  --count N    exit after N lines\n"
    "  --help       show this text\n"
    "  --version    show the version\n";

}  // namespace

int main(int argc, char** argv) {
  using namespace quillmark;
  std::string error;
  const auto options = FrontEndOptions::parse(argc, argv, error);
  if (!options) {
    std::fprintf(stderr, "quillmark: %s\n%s", error.c_str(), kUsage);
    return 2;
  }
  if (options->help) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (options->version) {
    std::puts("quillmark " QM_VERSION);
    return 0;
  }

  // A closed pipe must end the program through a failed write, not kill it mid-line.
  std::signal(SIGPIPE, SIG_IGN);
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  // Blocked before any thread starts, so every thread inherits the mask and the signalfd alone
  // receives them.
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  const int signalFd = signalfd(-1, &stopSignals, SFD_CLOEXEC | SFD_NONBLOCK);

  PollMainLoop& loop = PollMainLoop::shared();
  if (signalFd >= 0) {
    loop.watchReadable(signalFd, [&loop, signalFd] {
      signalfd_siginfo info{};
      (void)!read(signalFd, &info, sizeof info);
      loop.quit();
    });
  }

  FrontEnd frontEnd(*options,
                    FrontEndSettings{[] { return SettingsManager::shared().refreshInterval(); },
                                     [] { return SettingsManager::shared().showNetSpeed(); }},
                    Monitor::shared(), stdout, [&loop] { loop.quit(); });
  Log::debug("Quillmark " QM_VERSION " started (" + std::string(options->json ? "json" : "text") + " mode)");
  frontEnd.start();
  loop.run();
  frontEnd.stop();
  Log::debug("Quillmark stopped");
  if (signalFd >= 0) close(signalFd);
  return frontEnd.outputFailed() ? 1 : 0;
}
