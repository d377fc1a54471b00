#pragma once

#include <string>

#include "sampling/samples.h"

namespace quillmark {

class L10n;

// The status item's text in the chosen language: "menu.statusText" with the CPU and memory
// percentages (two doubles, CPU first), then (with showNetSpeed) two spaces and the compact
// receive and send rates, e.g. "CPU 12% MEM 63%  ↓14K ↑2.3M".
[[nodiscard]] std::string statusText(const CPUSample& cpu, const MemorySample& memory,
                                     const NetSample& network, bool showNetSpeed, const L10n& l10n);
// The same with the shared L10n.
[[nodiscard]] std::string statusText(const CPUSample& cpu, const MemorySample& memory,
                                     const NetSample& network, bool showNetSpeed);

}  // namespace quillmark
