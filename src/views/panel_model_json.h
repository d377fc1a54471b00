#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "views/panel_model.h"

namespace quillmark {

// Reads the lines of `quillmark --json` into a PanelModel: the last line gives the figures and
// the process rows; every line before it adds one point to the live histories, so a file of a few
// minutes' output renders with charts. Nulls stay absent. Quillmark's own cost is its own row
// ("quillmark") when the scan has one. Absent with a message in `error` when no line parses.
[[nodiscard]] std::optional<PanelModel> panelModelFromJsonLines(std::string_view text, std::string& error);

}  // namespace quillmark
