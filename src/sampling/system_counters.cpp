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

NetSample netRates(const NetTotals& previous, const NetTotals& current, double elapsed) {
  NetSample rates;
  if (!(elapsed > 0.1)) return rates;
  if (current.down >= previous.down)
    rates.downBps = static_cast<double>(current.down - previous.down) / elapsed;
  if (current.up >= previous.up) rates.upBps = static_cast<double>(current.up - previous.up) / elapsed;
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

NetSample SystemCounterTracker::network(const std::optional<NetTotals>& totals, double elapsed) {
  if (!totals) return {};
  NetSample rates;
  if (prevNet) rates = SystemCounterMath::netRates(*prevNet, *totals, elapsed);
  prevNet = totals;
  return rates;
}

}  // namespace quillmark
