#include "sampling/system_counters.h"

#include <algorithm>

namespace quillmark {
namespace SystemCounterMath {

double tickDelta(std::uint64_t previous, std::uint64_t current) {
  return current >= previous ? static_cast<double>(current - previous) : 0.0;
}

double cpuUsage(const CPUTicks& previous, const CPUTicks& current) {
  const double busy = tickDelta(previous.user, current.user) + tickDelta(previous.system, current.system) +
                      tickDelta(previous.nice, current.nice);
  const double all = busy + tickDelta(previous.idle, current.idle);
  if (all <= 0) return 0;
  return std::min(100.0, busy / all * 100.0);
}

std::vector<double> perCoreUsage(const std::vector<CoreTicks>& previous,
                                 const std::vector<CoreTicks>& current) {
  std::vector<double> loads;
  if (previous.size() != current.size()) return loads;
  loads.reserve(current.size());
  for (std::size_t i = 0; i < current.size(); ++i) {
    if (previous[i].cpu != current[i].cpu) return {};
    loads.push_back(coreUsage(previous[i].ticks, current[i].ticks));
  }
  return loads;
}

NetSample netRates(const NetCounters& previous, const NetCounters& current, double elapsed) {
  NetSample rates;
  if (!(elapsed > 0.1)) return rates;
  double down = 0, up = 0;
  for (std::size_t i = 0; i < current.size(); ++i) {
    const InterfaceBytes& now = current[i];
    // The system lists interfaces in a stable order, so the same position usually holds the same one.
    const InterfaceBytes* before =
        i < previous.size() && previous[i].name == now.name ? &previous[i] : nullptr;
    for (std::size_t j = 0; !before && j < previous.size(); ++j) {
      if (previous[j].name == now.name) before = &previous[j];
    }
    if (!before) continue;
    down += tickDelta(before->down, now.down);
    up += tickDelta(before->up, now.up);
  }
  rates.downBps = down / elapsed;
  rates.upBps = up / elapsed;
  return rates;
}

MemorySample capToTotal(MemorySample sample) {
  for (std::uint64_t* part : {&sample.app, &sample.wired, &sample.compressed, &sample.cached, &sample.free}) {
    *part = std::min(*part, sample.total);
  }
  return sample;
}

}  // namespace SystemCounterMath

CPUSample SystemCounterTracker::cpu(const CPUReading& reading) {
  CPUSample sample;
  if (reading.total) {
    if (prevCPU) sample.total = SystemCounterMath::cpuUsage(*prevCPU, *reading.total);
    prevCPU = reading.total;
  }
  sample.perCore = SystemCounterMath::perCoreUsage(prevPerCore, reading.perCore);
  prevPerCore = reading.perCore;
  return sample;
}

NetSample SystemCounterTracker::network(const std::optional<NetCounters>& counters, double elapsed) {
  if (!counters) return {};
  NetSample rates;
  if (prevNet) rates = SystemCounterMath::netRates(*prevNet, *counters, elapsed);
  prevNet = counters;
  return rates;
}

}  // namespace quillmark
