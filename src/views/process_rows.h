#pragma once

#include <string_view>
#include <vector>

#include "views/panel_model.h"

namespace quillmark {

// One shown row of the process list: its 1-based rank, the sample, and the fill of its bar.
struct ProcessRow {
  int rank = 0;
  ProcessSample proc;
  double barFraction = 0;
  bool pinned = false;
  bool paused = false;
};

// The process list as a face shows it: ProcessListBuilder's order, idle filter and search over
// the model's rows, the first row of each pinned name moved to the top (from the model's pins,
// as the pin store partitions), then cut to maxRows, ranked, and given their bar fractions.
// Main thread (the search goes through the platform's locale-aware matcher).
[[nodiscard]] std::vector<ProcessRow> rankedProcessRows(const PanelModel& model, PanelModel::SortMode mode,
                                                        std::string_view search, int maxRows);

}  // namespace quillmark
