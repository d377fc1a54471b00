#pragma once

#include <string>

#include "sampling/linux/testing/temp_tree.h"

namespace quillmark::testing {

// Fake sysfs trees modelled on real machines, for the Linux sensor readers' tests and benchmark.
// Values are in the kernel's units (milli-°C, RPM, µWh/µAh/µW/µA/µV).

// coretemp (one core hotter than the package), thinkpad_acpi with eight
// unlabeled sensors and one fan, acpitz, nvme, an energy-style BAT0 and an offline AC adapter.
void buildThinkPad(const TempTree& tree);
// k10temp with only Tctl, amdgpu with its DRM card (busy %, VRAM), a charge-style BAT1 that is
// charging, an online ACAD and a wireless mouse's battery (scope Device).
void buildAmdLaptop(const TempTree& tree);
// k10temp with Tctl and Tdie, a Super-I/O chip with three fans (one stopped), an NVIDIA card and
// the driver's /proc entry; no battery.
void buildNvidiaDesktop(const TempTree& tree);
// `sensors` temperature channels over chips of eight (all but the first on a device with runtime
// power management), `fans` fans, one battery and one amdgpu.
void buildLargeMachine(const TempTree& tree, int sensors, int fans);

}  // namespace quillmark::testing
