// Stands in for Quillmark in the guardian's crash test: pauses the group of the pid it is given,
// with a guardian following the paused list as in the real program, prints
// "paused <guardian pid>" and waits to be killed.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "base/defaults_store.h"
#include "base/virtual_time.h"
#include "processes/pause_guardian.h"
#include "processes/pause_manager.h"

int main(int argc, char** argv) {
  using namespace quillmark;
  if (argc != 3) return 2;
  VirtualClock clock;
  VirtualMainLoop loop(clock);
  PauseGuardian guardian(argv[1]);
  PauseManager manager(PauseManager::Environment{
      DefaultsStore::shared(), loop, clock,
      ProcessOS{StartTimeSource::platform(), ProcessSignals::platform(), CgroupFreezer::platform()},
      nullptr});
  (void)manager.paused.subscribe([&guardian](const auto& groups) { guardian.update(groups); });
  if (!manager.pause(std::atoi(argv[2]), "child")) return 1;
  std::printf("paused %d\n", static_cast<int>(guardian.pid()));
  std::fflush(stdout);
  for (;;) ::pause();
}
