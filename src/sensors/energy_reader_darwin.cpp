#include <CoreFoundation/CFDate.h>
#include <dlfcn.h>
#include <libproc.h>
#include <sys/proc_info.h>

#include <cstring>
#include <map>

#include "sensors/energy_reader.h"

namespace quillmark {
namespace {

// int coalition_info_resource_usage(uint64_t cid, struct coalition_resource_usage* cru, size_t sz)
using CoalitionUsageFn = int (*)(std::uint64_t, void*, std::size_t);

// The kernel copies at most the size asked for, so a buffer larger than any release's record
// is safe; the energy counter is the uint64 at offset 88 in every release.
constexpr std::size_t kUsageBuffer = 512;
constexpr std::size_t kEnergyOffset = 88;

CoalitionUsageFn usageFunction() {
  static const auto fn =
      reinterpret_cast<CoalitionUsageFn>(dlsym(RTLD_DEFAULT, "coalition_info_resource_usage"));
  return fn;
}

EnergyTracker& tracker() {
  static EnergyTracker instance;
  return instance;
}

std::optional<std::uint64_t> coalitionOf(std::int32_t pid) {
  proc_pidcoalitioninfo info{};
  const int size = static_cast<int>(sizeof info);
  if (proc_pidinfo(pid, PROC_PIDCOALITIONINFO, 0, &info, size) != size) return std::nullopt;
  return info.coalition_id[0];
}

}  // namespace

bool EnergyReader::available() { return usageFunction() != nullptr; }

std::vector<ProcessSample> EnergyReader::aggregatedRows(const std::vector<ProcessSample>& processes) {
  const CoalitionUsageFn usage = usageFunction();
  if (!usage) return {};
  const double now = CFAbsoluteTimeGetCurrent();

  std::map<std::uint64_t, CoalitionReading> groups;
  for (const auto& process : processes) {
    const auto id = coalitionOf(process.pid);
    if (!id) continue;
    CoalitionReading& group = groups[*id];
    group.id = *id;
    group.members.push_back(process);
  }
  std::vector<CoalitionReading> readings;
  readings.reserve(groups.size());
  for (auto& [id, group] : groups) {
    if (id != 0) {
      alignas(8) unsigned char buffer[kUsageBuffer] = {};
      if (usage(id, buffer, sizeof buffer) == 0) {
        std::uint64_t energy = 0;
        std::memcpy(&energy, buffer + kEnergyOffset, sizeof energy);
        group.energyNanojoules = energy;
      }
    }
    readings.push_back(std::move(group));
  }
  return tracker().rows(readings, now);
}

}  // namespace quillmark
