#include "sampling/process_scan.h"

#include "base/utf8.h"

namespace quillmark {

std::string processDisplayName(std::string_view bytes) {
  if (bytes.empty()) return "unknown";
  return repairUtf8(bytes);
}

double processCPUPercent(std::optional<std::uint64_t> previousNs, std::uint64_t currentNs, double dt) {
  if (!previousNs || currentNs < *previousNs || !(dt > 0.1)) return 0;
  const double dtNs = dt * 1'000'000'000.0;
  return static_cast<double>(currentNs - *previousNs) / dtNs * 100.0;
}

ProcessScanResult ProcessScanner::scan(double now, ProcessReader& reader) {
  const double previous = lastProcessScanTime;
  lastProcessScanTime = now;
  std::vector<RawProcess> raw = reader.readProcessesRaw(processNameCache);
  const double dt = previous > 0 ? now - previous : 0;

  ProcessScanResult result;
  result.processes.reserve(raw.size());
  result.livePids.reserve(raw.size());
  for (RawProcess& process : raw) {
    result.livePids.insert(process.pid);
    std::optional<std::uint64_t> before;
    if (auto it = prevProcessCPUTime.find(process.pid);
        it != prevProcessCPUTime.end() && it->second.startTime == process.startTime) {
      before = it->second.cpuTime;
    }
    const double percent = processCPUPercent(before, process.cpuTime, dt);
    prevProcessCPUTime[process.pid] = {process.startTime, process.cpuTime};
    result.processes.push_back(
        ProcessSample{process.pid, std::move(process.name), percent, process.mem, process.startTime});
  }

  std::erase_if(prevProcessCPUTime, [&](const auto& entry) { return !result.livePids.count(entry.first); });
  std::erase_if(processNameCache, [&](const auto& entry) { return !result.livePids.count(entry.first); });
  reader.retainOnly(result.livePids);
  return result;
}

}  // namespace quillmark
