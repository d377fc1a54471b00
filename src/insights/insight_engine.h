#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/published.h"
#include "base/shared_instance.h"
#include "insights/pressure_monitor.h"
#include "sampling/samples.h"

namespace quillmark {

class L10n;

// One finding of the diagnostics card. pid and kind identify it; message is the localized sentence;
// reclaimBytes is what ending the process would free, where the rule knows it.
struct Insight {
  enum class Kind { pressureCulprit = 0, leak = 1, sleepBlocker = 2, idleHog = 3 };
  Kind kind = Kind::pressureCulprit;
  std::int32_t pid = 0;
  std::string processName;
  std::string message;
  std::optional<std::uint64_t> reclaimBytes;
  bool operator==(const Insight&) const = default;
};

[[nodiscard]] std::string_view name(Insight::Kind kind);

// Turns the stream of process samples and sleep-preventing assertions into the diagnostics card's
// findings, rebuilt after each accepted ingest:
//  - pressure culprit: the largest process when memory pressure last rose, shown for 600 s while
//    the level is above normal;
//  - leak: a process whose resident memory grew by more than 768 MiB over at least 20 samples,
//    with at least 80 % of the steps not falling;
//  - sleep blocker: a process holding a sleep-preventing assertion (this program excepted);
//  - idle hog: a process above 1 GiB and below 1.5 % CPU for 20 ingests in a row.
// Process samples are accepted at most every 30 s (20 samples are about ten minutes); assertions
// whenever they change. Times are absolute seconds. Main thread only.
class InsightEngine {
 public:
  static constexpr double kIngestInterval = 30.0;
  static constexpr std::size_t kTrackLength = 40;
  static constexpr std::size_t kLeakMinSamples = 20;
  static constexpr std::uint64_t kLeakGrowthBytes = 805'306'368;  // 768 MiB; growth must exceed it
  static constexpr double kLeakNonDecreasingShare = 0.8;
  static constexpr double kIdleCpuPercent = 1.5;
  static constexpr std::uint64_t kIdleMinBytes = 1'073'741'824;  // 1 GiB; size must exceed it
  static constexpr int kIdleStreak = 20;
  static constexpr double kCulpritSeconds = 600.0;

  struct Environment {
    const Clock& clock;
    const L10n& l10n;
    std::function<PressureLevel()> pressureLevel;
    // The sampling engine's latest process list, for the culprit snapshot.
    std::function<std::vector<ProcessSample>()> latestProcesses;
    std::int32_t ownPid = 0;
  };

  struct TrackPoint {
    double t = 0;
    std::uint64_t bytes = 0;
  };
  struct Culprit {
    std::int32_t pid = 0;
    std::string name;
    std::uint64_t bytes = 0;
    double at = 0;
  };

  explicit InsightEngine(Environment environment);
  InsightEngine(const InsightEngine&) = delete;
  InsightEngine& operator=(const InsightEngine&) = delete;

  static InsightEngine& shared() { return SharedInstance<InsightEngine>::get(); }

  Published<std::vector<Insight>> insights;

  // True when a process sample would be accepted now; the engine scans processes for it even
  // with the panel closed.
  [[nodiscard]] bool wantsProcessScan() const;
  void ingest(const std::vector<ProcessSample>& processes, const std::optional<AssertionMap>& assertions);
  // Called on a rise in memory pressure: remembers the largest process of the latest list.
  void captureCulprits(PressureLevel level);
  // Re-evaluates the findings (the pressure level changed, so the culprit may come or go).
  void refresh() { rebuild(); }

 private:
  void rebuild();
  [[nodiscard]] std::string nameOf(std::int32_t pid) const;
  void addLeaks(std::vector<Insight>& out) const;

  // A process is its pid and start time: a pid reused by another program between two ingests
  // starts with an empty track and streak instead of inheriting the old process's.
  struct ProcessKey {
    std::int32_t pid = 0;
    std::uint64_t startTime = 0;
    auto operator<=>(const ProcessKey&) const = default;
  };
  struct Tracked {
    std::string name;
    std::vector<TrackPoint> memory;
    int idleStreak = 0;
  };

  Environment env_;
  std::map<ProcessKey, Tracked> tracked_;  // the processes of the last accepted ingest
  double lastIngest_ = 0;
  std::optional<Culprit> lastCulprit_;
  AssertionMap sleepBlockers_;
};

}  // namespace quillmark
