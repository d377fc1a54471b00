#include "insights/insight_engine.h"

#include <algorithm>
#include <set>

#include "base/log.h"
#include "settings/format.h"
#include "settings/l10n.h"

namespace quillmark {

std::string_view name(Insight::Kind kind) {
  switch (kind) {
    case Insight::Kind::pressureCulprit:
      return "pressureCulprit";
    case Insight::Kind::leak:
      return "leak";
    case Insight::Kind::sleepBlocker:
      return "sleepBlocker";
    case Insight::Kind::idleHog:
      return "idleHog";
  }
  return "pressureCulprit";
}

InsightEngine::InsightEngine(Environment environment) : env_(std::move(environment)) {}

bool InsightEngine::wantsProcessScan() const {
  return env_.clock.absoluteNow() - lastIngest_ >= kIngestInterval;
}

void InsightEngine::ingest(const std::vector<ProcessSample>& processes,
                           const std::optional<AssertionMap>& assertions) {
  bool assertionsChanged = false;
  if (assertions && *assertions != sleepBlockers_) {
    sleepBlockers_ = *assertions;
    assertionsChanged = true;
  }
  const double now = env_.clock.absoluteNow();
  if (now - lastIngest_ < kIngestInterval || processes.empty()) {
    if (assertionsChanged) rebuild();
    return;
  }
  lastIngest_ = now;
  std::set<ProcessKey> live;
  for (const auto& process : processes) {
    const ProcessKey key{process.pid, process.startTime};
    live.insert(key);
    Tracked& tracked = tracked_[key];
    tracked.name = process.name;
    auto& track = tracked.memory;
    track.push_back({now, process.memoryBytes});
    if (track.size() > kTrackLength) track.erase(track.begin(), track.end() - kTrackLength);
    const bool idleAndLarge = process.cpuPercent < kIdleCpuPercent && process.memoryBytes > kIdleMinBytes;
    tracked.idleStreak = idleAndLarge ? tracked.idleStreak + 1 : 0;
  }
  std::erase_if(tracked_, [&](const auto& entry) { return !live.contains(entry.first); });
  rebuild();
}

void InsightEngine::captureCulprits(PressureLevel level) {
  const std::vector<ProcessSample> processes =
      env_.latestProcesses ? env_.latestProcesses() : std::vector<ProcessSample>{};
  if (processes.empty()) return;
  // max_element keeps the first of equals.
  const auto largest = std::max_element(processes.begin(), processes.end(), [](const auto& a, const auto& b) {
    return a.memoryBytes < b.memoryBytes;
  });
  lastCulprit_ = Culprit{largest->pid, largest->name, largest->memoryBytes, env_.clock.absoluteNow()};
  Log::debug("Pressure culprit snapshot: " + largest->name + " (pid " + std::to_string(largest->pid) + ", " +
             Format::byteString(largest->memoryBytes) + ") at " + std::string(name(level)));
  rebuild();
}

std::string InsightEngine::nameOf(std::int32_t pid) const {
  // A scan sees one process per pid, so the first key with this pid is the only one.
  const auto it = tracked_.lower_bound(ProcessKey{pid, 0});
  return it != tracked_.end() && it->first.pid == pid ? it->second.name : "pid " + std::to_string(pid);
}

void InsightEngine::addLeaks(std::vector<Insight>& out) const {
  for (const auto& [key, tracked] : tracked_) {
    const auto& track = tracked.memory;
    if (track.size() < kLeakMinSamples) continue;
    const std::uint64_t first = track.front().bytes;
    const std::uint64_t last = track.back().bytes;
    if (last <= first || last - first <= kLeakGrowthBytes) continue;
    std::size_t rising = 0;
    for (std::size_t i = 1; i < track.size(); ++i)
      if (track[i].bytes >= track[i - 1].bytes) ++rising;
    if (static_cast<double>(rising) / static_cast<double>(track.size() - 1) < kLeakNonDecreasingShare)
      continue;
    const std::string& processName = tracked.name;
    out.push_back({Insight::Kind::leak, key.pid, processName,
                   L(env_.l10n, "insight.leak", processName, Format::byteString(last - first)),
                   std::nullopt});
  }
}

void InsightEngine::rebuild() {
  std::vector<Insight> found;
  const double now = env_.clock.absoluteNow();
  const PressureLevel level = env_.pressureLevel ? env_.pressureLevel() : PressureLevel::normal;
  if (lastCulprit_ && now - lastCulprit_->at < kCulpritSeconds && level != PressureLevel::normal) {
    const auto& c = *lastCulprit_;
    found.push_back({Insight::Kind::pressureCulprit, c.pid, c.name,
                     L(env_.l10n, "insight.pressure", c.name, Format::byteString(c.bytes)), c.bytes});
  }
  addLeaks(found);
  for (const auto& [pid, assertionNames] : sleepBlockers_) {
    if (pid == env_.ownPid) continue;
    std::string joined;
    for (const auto& assertion : assertionNames) joined += (joined.empty() ? "" : ", ") + assertion;
    const std::string processName = nameOf(pid);
    found.push_back({Insight::Kind::sleepBlocker, pid, processName,
                     L(env_.l10n, "insight.sleepBlocker", processName, joined), std::nullopt});
  }
  for (const auto& [key, tracked] : tracked_) {
    if (tracked.idleStreak < kIdleStreak) continue;
    const std::uint64_t bytes = tracked.memory.empty() ? 0 : tracked.memory.back().bytes;
    const std::string& processName = tracked.name;
    found.push_back({Insight::Kind::idleHog, key.pid, processName,
                     L(env_.l10n, "insight.idleHog", processName, Format::byteString(bytes)), bytes});
  }
  std::stable_sort(found.begin(), found.end(), [](const Insight& a, const Insight& b) {
    if (a.kind != b.kind) return a.kind < b.kind;
    return a.pid < b.pid;
  });
  if (found == insights.value()) return;
  std::string line = "Diagnostics updated:";
  for (std::size_t i = 0; i < found.size(); ++i)
    line += (i == 0 ? " [" : " / [") + std::string(name(found[i].kind)) + "] " + found[i].processName;
  insights.set(std::move(found));
  Log::debug(line);
}

}  // namespace quillmark
