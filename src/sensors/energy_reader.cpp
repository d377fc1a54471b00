#include "sensors/energy_reader.h"

#include <set>

namespace quillmark {

namespace {
constexpr double kMinimumInterval = 0.5;
}  // namespace

std::vector<ProcessSample> EnergyTracker::rows(const std::vector<CoalitionReading>& coalitions, double now) {
  std::vector<ProcessSample> rows;
  std::set<std::uint64_t> seen;
  for (const auto& coalition : coalitions) {
    seen.insert(coalition.id);
    if (coalition.id == 0 || !coalition.energyNanojoules || coalition.members.empty()) continue;
    const std::uint64_t energy = *coalition.energyNanojoules;
    double watts = 0;
    if (const auto before = previous_.find(coalition.id); before != previous_.end()) {
      const double elapsed = now - before->second.at;
      if (energy >= before->second.nanojoules && elapsed > kMinimumInterval) {
        watts = static_cast<double>(energy - before->second.nanojoules) / elapsed / 1e9;
      }
    }
    previous_[coalition.id] = Previous{energy, now};
    const ProcessSample* leader = &coalition.members.front();
    for (const auto& member : coalition.members) {
      if (member.pid < leader->pid) leader = &member;
    }
    rows.push_back(ProcessSample{leader->pid, leader->name, watts, energy});
  }
  std::erase_if(previous_, [&](const auto& entry) { return !seen.contains(entry.first); });
  return rows;
}

}  // namespace quillmark
