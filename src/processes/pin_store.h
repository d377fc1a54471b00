#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/defaults_store.h"
#include "base/published.h"
#include "base/shared_instance.h"
#include "sampling/samples.h"

namespace quillmark {

// The view data of one pinned name's trend: a copy of its track, oldest first. Nothing is drawn
// with fewer than two values.
struct PinnedTrend {
  std::vector<double> values;
  [[nodiscard]] bool drawable() const { return values.size() >= 2; }
};

// Up to three process names the user pinned (by name, so pins survive restarts of the process and
// of the program; stored under "pinnedProcesses"), and for each a CPU track sampled every 30 s and
// kept for an hour (120 values, not stored). Names compare exactly and case-sensitively.
// Main thread only.
class PinStore {
 public:
  PinStore(DefaultsStore& defaults, Clock& clock);
  static PinStore& shared() { return SharedInstance<PinStore>::get(); }

  Published<std::vector<std::string>> names;  // pin order

  [[nodiscard]] bool isPinned(std::string_view name) const;
  [[nodiscard]] bool isFull() const { return names().size() >= kMaxPins; }
  // Pins, or unpins and forgets the track; pinning into a full store changes nothing.
  void toggle(std::string_view name);
  // One value per pinned name (the largest CPU share among processes of that name, 0 when none
  // runs), at most every 30 s.
  void record(const std::vector<ProcessSample>& processes);
  // The first row of each pinned name, in list order, then every other row in list order.
  [[nodiscard]] std::vector<ProcessSample> partition(const std::vector<ProcessSample>& list) const;
  // Replaces a name's track (prefilled trends).
  void seed(std::vector<double> track, const std::string& name);

  [[nodiscard]] PinnedTrend trend(const std::string& name) const;
  [[nodiscard]] const std::map<std::string, std::vector<double>, std::less<>>& cpuTracks() const {
    return tracks_;
  }

  static constexpr std::size_t kMaxPins = 3;
  static constexpr double kRecordInterval = 30.0;
  static constexpr std::size_t kTrackLength = 120;
  static constexpr std::string_view kDefaultsKey = "pinnedProcesses";

 private:
  DefaultsStore& defaults_;
  Clock& clock_;
  std::map<std::string, std::vector<double>, std::less<>> tracks_;
  double lastRecord_ = 0;  // absolute seconds; 0 before the first record
};

}  // namespace quillmark
