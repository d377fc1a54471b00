#include "processes/process_list_builder.h"

#include <algorithm>

#include "base/check.h"
#include "processes/pause_manager.h"
#include "processes/pin_store.h"
#include "processes/text_search.h"

namespace quillmark {

std::string_view labelKey(ProcessSortMode mode) {
  switch (mode) {
    case ProcessSortMode::cpu:
      return "proc.sort.cpu";
    case ProcessSortMode::memory:
      return "proc.sort.memory";
    case ProcessSortMode::energy:
      return "proc.sort.energy";
  }
  return "proc.sort.cpu";
}

namespace ProcessListBuilder {

std::vector<ProcessSample> build(const std::vector<ProcessSample>& processes,
                                 const std::vector<ProcessSample>& energyRows, ProcessSortMode mode,
                                 std::string_view search, const Context& context) {
  std::vector<ProcessSample> list = mode == ProcessSortMode::energy ? energyRows : processes;
  if (mode == ProcessSortMode::memory)
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a.memoryBytes > b.memoryBytes; });
  else
    std::stable_sort(list.begin(), list.end(),
                     [](const auto& a, const auto& b) { return a.cpuPercent > b.cpuPercent; });

  if (mode == ProcessSortMode::cpu && search.empty())
    std::erase_if(list, [&context](const ProcessSample& row) {
      return row.cpuPercent < kIdleThreshold && !(context.isPaused && context.isPaused(row.pid));
    });
  if (!search.empty())
    std::erase_if(list, [search](const ProcessSample& row) {
      return !TextSearch::containsIgnoringCase(row.name, search);
    });
  return context.pins ? context.pins->partition(list) : list;
}

std::vector<ProcessSample> build(const std::vector<ProcessSample>& processes,
                                 const std::vector<ProcessSample>& energyRows, ProcessSortMode mode,
                                 std::string_view search) {
  Context context;
  if (SharedInstance<PauseManager>::installed())
    context.isPaused = [](std::int32_t pid) { return PauseManager::shared().entry(pid).has_value(); };
  if (SharedInstance<PinStore>::installed()) context.pins = &PinStore::shared();
  return build(processes, energyRows, mode, search, context);
}

std::vector<RankedProcess> rank(const std::vector<ProcessSample>& list, int maxRows) {
  QM_CHECK(maxRows >= 0);
  std::vector<RankedProcess> ranked;
  const auto count = std::min(list.size(), static_cast<std::size_t>(maxRows));
  ranked.reserve(count);
  for (std::size_t i = 0; i < count; ++i) ranked.push_back({static_cast<int>(i) + 1, list[i]});
  return ranked;
}

double barFraction(const ProcessSample& row, ProcessSortMode mode, const std::vector<RankedProcess>& shown) {
  switch (mode) {
    case ProcessSortMode::cpu:
      return std::min(row.cpuPercent, 100.0) / 100.0;
    case ProcessSortMode::memory: {
      std::uint64_t maxMem = 1;
      for (const auto& r : shown) maxMem = std::max(maxMem, r.proc.memoryBytes);
      return static_cast<double>(row.memoryBytes) / static_cast<double>(maxMem);
    }
    case ProcessSortMode::energy:
      return std::min(row.cpuPercent / kFullEnergy, 1.0);
  }
  return 0;
}

}  // namespace ProcessListBuilder
}  // namespace quillmark
