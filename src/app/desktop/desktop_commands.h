#pragma once

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

}  // namespace quillmark
