#include <gtk/gtk.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "app/desktop/desktop_commands.h"
#include "app/desktop/desktop_shell_linux.h"
#include "app/desktop/gtk_layer_shell_linux.h"
#include "app/desktop/scripting_service.h"
#include "app/frontend/front_end.h"
#include "app/frontend/line_writer.h"
#include "app/frontend/snapshot_json.h"
#include "app/frontend/stop_signals.h"
#include "app/services/app_services.h"
#include "base/glib_main_loop.h"
#include "base/log.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

bool hasValue(const char* name) {
  const char* value = std::getenv(name);
  return value && *value;
}

// The status line on standard output, for a desktop without any tray: the terminal program's
// text mode on the desktop program's loop and monitor.
struct StatusLineFallback {
  StatusLineFallback(AppServices& services, LinuxMainLoop& loop)
      : output(STDOUT_FILENO),
        writer(output.fd()),
        frontEnd(
            FrontEndOptions{}, FrontEndSettings::of(services.settings()), services.monitor(), loop,
            L10n::shared(), [this](std::string line, bool keep) { writer.write(std::move(line), keep); },
            [] {}) {
    writer.wantWritable = [&loop, this](bool want) {
      if (want) {
        loop.watchWritable(output.fd(), [this] { writer.onWritable(); });
      } else {
        loop.unwatch(output.fd());
      }
    };
    // Nobody reads (standard output closed): the panel still works, the lines just stop.
    writer.onFailure = [this] { frontEnd.stop(); };
  }

  NonBlockingOutput output;
  LineWriter writer;
  FrontEnd frontEnd;
};

}  // namespace

bool hasGraphicalSession() { return hasValue("DISPLAY") || hasValue("WAYLAND_DISPLAY"); }

std::optional<int> desktopMain(bool evenWithoutTray) {
  // Before GTK or any service starts a thread, so that every thread inherits the blocked signals.
  StopSignals stopSignals;
  std::signal(SIGPIPE, SIG_IGN);

  // Cards are placed where the tray item is. A Wayland client can do that only with layer-shell
  // surfaces, so under a compositor that offers them GTK talks Wayland natively; under one without
  // them the windows go through XWayland, where X11 lets a client place them. A backend the user
  // chose (GDK_BACKEND) is kept, and so is GTK's choice when the compositor handed us a connected
  // socket (WAYLAND_SOCKET): asking the compositor would use that up.
  if (hasValue("WAYLAND_DISPLAY") && !hasValue("GDK_BACKEND") && !hasValue("WAYLAND_SOCKET")) {
    if (compositorOffersLayerShell()) {
      setenv("GDK_BACKEND", "wayland", 1);
    } else if (hasValue("DISPLAY")) {
      setenv("GDK_BACKEND", "x11", 1);
    }
  }
  // The cards are drawn by Cairo into plain surfaces. Without this GDK probes OpenGL when it opens
  // an X display, which maps the GL driver (with Mesa, LLVM too): some 50 MB for nothing.
  if (!hasValue("GDK_GL")) setenv("GDK_GL", "disable", 1);
  if (!gtk_init_check(nullptr, nullptr)) {
    if (evenWithoutTray) {
      std::fprintf(stderr, "quillmark: cannot open the display\n");
      return 1;
    }
    std::fprintf(stderr, "quillmark: cannot open the display; printing the status line instead\n");
    return std::nullopt;
  }
  GlibMainLoop loop;
  LinuxMainLoop::useAsMain(loop);

  // The bus name is the single-instance lock: a second start asks the first to open its panel.
  std::string error;
  auto service = ScriptingService::claim(loop, error);
  if (!service) {
    const char* const openPanel[] = {"ctl", "open-panel"};
    if (ctlMain(2, openPanel) == 0) return 0;
    std::fprintf(stderr, "quillmark: %s\n", error.c_str());
    return 1;
  }
  stopSignals.quitOnSignal(loop);

  AppServices services;
  auto shellOwner = std::make_unique<DesktopShell>(services, loop);
  DesktopShell& shell = *shellOwner;

  // Snapshot answers with the latest measurement; while the panel is closed the monitor skips the
  // heavy readers, so their fields are null then.
  std::optional<std::pair<Monitor::Snapshot, double>> latest;
  const auto keepLatest = [&services, &latest] {
    services.monitor().onSnapshot = [&latest,
                                     next = services.monitor().onSnapshot](const Monitor::Snapshot& s) {
      latest.emplace(s, Clock::system().unixNow());
      if (next) next(s);
    };
  };
  std::unique_ptr<StatusLineFallback> fallback;
  bool toldNoTray = false;
  shell.trayShown = [&](bool present) {
    if (present || evenWithoutTray || toldNoTray) return;
    toldNoTray = true;
    std::fprintf(
        stderr,
        "quillmark: no system tray shows Quillmark (no StatusNotifierWatcher with a host on the "
        "session bus); printing the status line instead. `quillmark ctl open-panel` opens the panel.\n");
    Log::debug("No tray host: status line on standard output");
    fallback = std::make_unique<StatusLineFallback>(services, loop);
    fallback->frontEnd.start();
    keepLatest();
  };

  const bool served = service->serve({services.monitor(), services.pauseManager(),
                                      ProcessTerminator::shared(), services.pins(), services.settings(),
                                      [&latest]() -> std::optional<std::string> {
                                        if (!latest) return std::nullopt;
                                        return snapshotJson(latest->first, latest->second);
                                      },
                                      [&shell] { shell.openPanel(); }},
                                     error);
  if (!served) {
    std::fprintf(stderr, "quillmark: %s\n", error.c_str());
    return 1;
  }
  service->onDisconnected = [&loop] { loop.quit(); };
  Log::debug("Quillmark " QM_VERSION " desktop program started");
  shell.setup();
  keepLatest();
  services.fanController().startIfEnabled();
  loop.run();
  stopSignals.beginStop();  // from here on the guard bounds the teardown
  if (fallback) fallback->frontEnd.stop();
  // Paused applications thaw and the fans go back before any window or service is torn down.
  services.willTerminate();
  fallback.reset();
  shellOwner.reset();
  // Work still queued may hold windows and views over the services: it goes before they do.
  loop.dropPending();
  Log::debug("Quillmark stopped");
  return 0;
}

}  // namespace quillmark
