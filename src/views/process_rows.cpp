#include "views/process_rows.h"

#include <algorithm>
#include <set>

namespace quillmark {

std::vector<ProcessRow> rankedProcessRows(const PanelModel& model, PanelModel::SortMode mode,
                                          std::string_view search, int maxRows) {
  ProcessListBuilder::Context context;
  context.isPaused = [&model](std::int32_t pid) { return model.pausedGroupOfPid.contains(pid); };
  std::vector<ProcessSample> list =
      ProcessListBuilder::build(model.processes, model.energyRows, mode, search, context);

  // The model carries the pinned names, not the store: the same partition on them.
  std::vector<ProcessSample> ordered;
  std::vector<ProcessSample> rest;
  std::set<std::string, std::less<>> taken;
  for (auto& p : list) {
    const bool isPin = std::find(model.pins.begin(), model.pins.end(), p.name) != model.pins.end();
    if (isPin && taken.insert(p.name).second)
      ordered.push_back(std::move(p));
    else
      rest.push_back(std::move(p));
  }
  const std::size_t pinnedCount = ordered.size();
  ordered.insert(ordered.end(), std::make_move_iterator(rest.begin()), std::make_move_iterator(rest.end()));

  const auto ranked = ProcessListBuilder::rank(ordered, std::max(0, maxRows));
  std::vector<ProcessRow> rows;
  for (const auto& r : ranked) {
    rows.push_back({r.rank, r.proc, ProcessListBuilder::barFraction(r.proc, mode, ranked),
                    static_cast<std::size_t>(r.rank) <= pinnedCount,
                    model.pausedGroupOfPid.contains(r.proc.pid)});
  }
  return rows;
}

}  // namespace quillmark
