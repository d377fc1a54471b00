#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sampling/samples.h"

namespace quillmark {

class PinStore;

// The orders the process list offers; the values are the picker's positions.
enum class ProcessSortMode { cpu = 0, memory = 1, energy = 2 };
// "proc.sort.cpu", "proc.sort.memory", "proc.sort.energy".
[[nodiscard]] std::string_view labelKey(ProcessSortMode mode);

// One shown row: its 1-based place and the process. Rows are identified by pid, not by rank.
struct RankedProcess {
  int rank = 0;
  ProcessSample proc;
  [[nodiscard]] std::int32_t id() const { return proc.pid; }
  bool operator==(const RankedProcess&) const = default;
};

// Turns a snapshot's process rows into the list the panel shows: a stable sort by the chosen
// order, the idle filter (CPU order without a search only), the search, and pinned names first.
// Stateless; main thread (it reads the pause manager and the pin store).
namespace ProcessListBuilder {

// Rows below this CPU share are idle in the CPU order, unless their app is paused.
inline constexpr double kIdleThreshold = 0.05;
// An energy value that fills a bar.
inline constexpr double kFullEnergy = 20.0;

struct Context {
  std::function<bool(std::int32_t pid)> isPaused;  // null: nothing is paused
  const PinStore* pins = nullptr;                  // null: nothing is pinned
};

[[nodiscard]] std::vector<ProcessSample> build(const std::vector<ProcessSample>& processes,
                                               const std::vector<ProcessSample>& energyRows,
                                               ProcessSortMode mode, std::string_view search,
                                               const Context& context);
// The same with the shared pause manager and pin store.
[[nodiscard]] std::vector<ProcessSample> build(const std::vector<ProcessSample>& processes,
                                               const std::vector<ProcessSample>& energyRows,
                                               ProcessSortMode mode, std::string_view search);

// The first maxRows rows (maxRows ≥ 0), numbered from 1.
[[nodiscard]] std::vector<RankedProcess> rank(const std::vector<ProcessSample>& list, int maxRows);

// The fill of a row's bar: CPU share of one core (capped at 100 %, no lower clamp), memory
// relative to the largest shown row, or energy relative to kFullEnergy (capped at 1).
[[nodiscard]] double barFraction(const ProcessSample& row, ProcessSortMode mode,
                                 const std::vector<RankedProcess>& shown);

}  // namespace ProcessListBuilder
}  // namespace quillmark
