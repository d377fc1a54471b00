#pragma once

#include <optional>

namespace quillmark {

// The bus-facing commands of the Linux program, entered from its main().
//
// serveMain: `quillmark --serve`, an instance without a terminal that measures and answers the
// scripting interface (see ScriptingService) until SIGTERM, SIGINT or SIGHUP, then resumes every
// group it paused. Exits 1 when another instance owns the bus name or there is no session bus.
[[nodiscard]] int serveMain();

// ctlMain: `quillmark ctl <verb> …` (argv[0] is "ctl"), one call to the running instance. Exits 0
// on success, 1 when the instance refused or failed, 2 for a bad command line, 3 when no instance
// runs (or there is no session bus).
[[nodiscard]] int ctlMain(int argc, const char* const* argv);

// Whether the environment names a display (DISPLAY or WAYLAND_DISPLAY).
[[nodiscard]] bool hasGraphicalSession();

// desktopMain: plain `quillmark` in a graphical session, and `quillmark --desktop`: the panel
// under a tray item, the first-run tip, the scripting interface, until Quit, SIGTERM, SIGINT or
// SIGHUP, which resume every paused group and hand the fans back. Holds the single-instance lock
// (the bus name); a second start opens the first one's panel and exits 0. Without any tray host
// it says so once and prints the status line as well, unless evenWithoutTray. Absent when no
// display can be opened: the caller prints the status line instead.
[[nodiscard]] std::optional<int> desktopMain(bool evenWithoutTray);

}  // namespace quillmark
