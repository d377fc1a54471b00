#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "app/desktop/desktop_commands.h"
#include "app/desktop/scripting_service.h"
#include "app/frontend/front_end.h"
#include "app/frontend/stop_signals.h"
#include "app/services/app_services.h"
#include "base/log.h"
#include "base/poll_main_loop.h"
#include "settings/l10n.h"

namespace quillmark {

int serveMain() {
  // Before any thread starts, so that every thread inherits the blocked stop signals.
  StopSignals stopSignals;
  std::signal(SIGPIPE, SIG_IGN);
  PollMainLoop& loop = PollMainLoop::shared();

  // The name is the lock: claim it before the services load and reconcile the stored paused
  // groups, which belong to the instance that holds it.
  std::string error;
  auto service = ScriptingService::claim(loop, error);
  if (!service) {
    std::fprintf(stderr, "quillmark: %s\n", error.c_str());
    return 1;
  }
  stopSignals.quitOnSignal(loop);

  AppServices services;
  // The front end's JSON mode measures everything and primes the rates; its lines are kept as the
  // answer to Snapshot instead of being printed.
  std::optional<std::string> latest;
  FrontEndOptions options;
  options.format = OutputFormat::json;
  FrontEnd frontEnd(
      options, FrontEndSettings::of(services.settings()), services.monitor(), loop, L10n::shared(),
      [&latest](std::string line, bool) { latest = std::move(line); }, [] {});
  const bool served =
      service->serve({services.monitor(), services.pauseManager(), ProcessTerminator::shared(),
                      services.pins(), services.settings(), [&latest] { return latest; }},
                     error);
  if (!served) {
    std::fprintf(stderr, "quillmark: %s\n", error.c_str());
    return 1;
  }
  service->onDisconnected = [&loop] { loop.quit(); };
  Log::debug("Quillmark " QM_VERSION " serving " + std::string(ScriptingService::kBusName));
  frontEnd.start();
  services.fanController().startIfEnabled();
  loop.run();
  stopSignals.beginStop();  // from here on the guard bounds the teardown
  frontEnd.stop();
  Log::debug("Quillmark stopped");
  return 0;
}

}  // namespace quillmark
