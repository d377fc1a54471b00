#pragma once

#include <string>

#include "app/frontend/bar_context.h"

namespace quillmark {

// A short multi-line summary of one snapshot in the chosen language, for a status bar's tooltip:
// CPU total and the busiest core, memory with its breakdown, network rates, disk free, then where
// present the temperatures, battery and GPU, and the three busiest processes. Lines are joined
// with '\n', plain text (the caller escapes for its consumer); process names have their control
// characters replaced so one name cannot add lines. Any thread.
[[nodiscard]] std::string statusTooltip(const Monitor::Snapshot& snapshot, const BarContext& context);

}  // namespace quillmark
