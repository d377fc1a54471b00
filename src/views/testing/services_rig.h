#pragma once

#include "processes/testing/fake_process_os.h"
#include "sampling/testing/monitor_rig.h"
#include "settings/testing/fakes.h"
#include "views/panel_services.h"

namespace quillmark::testing {

// Everything the panel's services stand on, over fakes: a monitor on virtual time, settings in
// memory with English texts, and process control over fake signals.
struct ServicesRig : MonitorRig {
  MemoryDefaultsStore store;
  FakePermission permission;
  FakeLoginItems items;
  LaunchAtLogin loginItem{items};
  SettingsManager settings{store, [](double) {}, permission, loginItem};
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  FakeStartTimes starts;
  FakeSignals signals;
  FakeFreezer freezer;
  PauseManager pauses{{store, loop, clock, ProcessOS{starts, signals, freezer}, nullptr}};
  ProcessTerminator terminator{loop, starts, signals};
  PinStore pins{store, clock};

  PanelServices::Services services() { return {loop, *monitor, settings, l10n, pauses, terminator, pins}; }
};

}  // namespace quillmark::testing
