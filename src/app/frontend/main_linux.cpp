// The Linux terminal program: prints one line per refresh for terminals and status bars, as the
// status text, every snapshot as JSON, waybar's custom-module objects or the i3bar protocol.
// SIGINT, SIGTERM and SIGHUP end it cleanly within a second, whatever it is doing; so does a reader
// that goes away, while a reader that merely stops reading only misses lines.

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

#include "app/desktop/desktop_commands.h"
#include "app/frontend/front_end.h"
#include "app/frontend/line_writer.h"
#include "app/frontend/stop_signals.h"
#include "app/services/app_services.h"
#include "base/log.h"
#include "base/poll_main_loop.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"
#include "views/render_panel.h"

namespace {

constexpr const char* kUsage =
    "usage: quillmark [--status-line | --json | --waybar | --i3bar] [--count N]\n"
    "       quillmark [--desktop] | --serve | ctl <verb> ...\n"
    "\n"
    "In a graphical session plain `quillmark` is the desktop program: an icon in the system tray\n"
    "whose click opens the panel (a second start opens the running one's panel).\n"
    "Otherwise, and with an output option, it prints what Quillmark measures once per refresh\n"
    "interval; the first line comes after one second of measuring, so even a single line tells\n"
    "the truth.\n"
    "  --status-line  the menu-bar text, \"CPU 12% MEM 63%\" (the default outside a session)\n"
    "  --json         every measurement as one JSON line (all fields, null when absent)\n"
    "  --waybar       one JSON object per line for a waybar custom module (return-type json)\n"
    "  --i3bar        the i3bar protocol, for i3bar and swaybar (status_command)\n"
    "  --count N      exit after N lines (N status arrays with --i3bar)\n"
    "  --desktop      the desktop program even where no tray shows it (quillmark ctl open-panel)\n"
    "  --serve        no output: answer scripts on the session bus (quillmark ctl --help)\n"
    "  --render-panel FILE.png  draw the panel into a PNG instead (see --render-panel --help)\n"
    "  --help         show this text\n"
    "  --version      show the version\n";

}  // namespace

int main(int argc, char** argv) {
  using namespace quillmark;
  if (wantsRenderPanel(argc, argv)) return renderPanelMain(argc, argv);
  if (argc >= 2 && std::strcmp(argv[1], "ctl") == 0) return ctlMain(argc - 1, argv + 1);
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
  if (options->serve) return serveMain();
  if (options->desktop || (argc == 1 && hasGraphicalSession())) {
    if (const auto status = desktopMain(options->desktop)) return *status;
  }

  // Before any thread starts, so that every thread inherits the blocked stop signals.
  StopSignals stopSignals;
  // A closed pipe must end the program through a failed write, not kill it mid-line.
  std::signal(SIGPIPE, SIG_IGN);

  PollMainLoop& loop = PollMainLoop::shared();
  stopSignals.quitOnSignal(loop);

  NonBlockingOutput output(STDOUT_FILENO);
  LineWriter writer(output.fd());
  writer.wantWritable = [&loop, &writer, fd = output.fd()](bool want) {
    if (want) {
      loop.watchWritable(fd, [&writer] { writer.onWritable(); });
    } else {
      loop.unwatch(fd);
    }
  };
  writer.onFailure = [&loop] { loop.quit(); };

  AppServices services;
  FrontEnd frontEnd(
      *options, FrontEndSettings::of(services.settings()), services.monitor(), loop, L10n::shared(),
      [&writer](std::string line, bool keep) { writer.write(std::move(line), keep); },
      [&loop, &writer] {
        // The last line is out when the writer is idle; a stop signal still ends the wait.
        if (writer.idle()) {
          loop.quit();
        } else {
          writer.onIdle = [&loop] { loop.quit(); };
        }
      });
  Log::debug("Quillmark " QM_VERSION " started (" + std::string(optionName(options->format)) + ")");
  frontEnd.start();
  services.fanController().startIfEnabled();
  loop.run();
  stopSignals.beginStop();  // from here on the guard bounds the teardown
  frontEnd.stop();
  writer.reportDrops();
  Log::debug("Quillmark stopped");
  return writer.failed() ? 1 : 0;
}
