#pragma once

#include <string>

#include "app/frontend/bar_context.h"

namespace quillmark {

// One line for waybar's custom module with "return-type": "json", which reads one JSON object per
// line: "text" the status text, "tooltip" the multi-line summary, "class" the names of the
// thresholds exceeded ("cpu-high", "mem-high", "hot"; an empty list when none), "percentage" the
// CPU total as a whole number (null when absent). waybar shows text and tooltip as Pango markup,
// so both are markup-escaped here (leave the module's "escape" option off). Any thread.
// `text` is the status text as the menu bar shows it.
[[nodiscard]] std::string waybarLine(const Monitor::Snapshot& snapshot, const BarContext& context,
                                     std::string_view text);

// Text made literal for Pango markup: & < > " ' become entities.
[[nodiscard]] std::string markupEscaped(std::string_view text);

}  // namespace quillmark
