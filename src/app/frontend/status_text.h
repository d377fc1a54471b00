#pragma once

#include <string>

#include "sampling/samples.h"

namespace quillmark {

// The status item's text: CPU and memory percentages, then (with showNetSpeed) two spaces and the
// compact receive and send rates, e.g. "CPU 12% MEM 63%  ↓14K ↑2.3M".
[[nodiscard]] std::string statusText(const CPUSample& cpu, const MemorySample& memory, const NetSample& network,
                                     bool showNetSpeed);

}  // namespace quillmark
