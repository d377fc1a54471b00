#include "processes/pin_store.h"

#include <algorithm>
#include <set>

namespace quillmark {

PinStore::PinStore(DefaultsStore& defaults, Clock& clock) : defaults_(defaults), clock_(clock) {
  // An edited list may repeat names or hold too many; keep the first three distinct ones.
  std::vector<std::string> loaded;
  for (auto& name : defaults_.getStringArray(kDefaultsKey).value_or(std::vector<std::string>{}))
    if (loaded.size() < kMaxPins && std::find(loaded.begin(), loaded.end(), name) == loaded.end())
      loaded.push_back(std::move(name));
  names.set(std::move(loaded));
}

bool PinStore::isPinned(std::string_view name) const {
  return std::find(names().begin(), names().end(), name) != names().end();
}

void PinStore::toggle(std::string_view name) {
  auto next = names();
  if (isPinned(name)) {
    std::erase(next, name);
    if (const auto it = tracks_.find(name); it != tracks_.end()) tracks_.erase(it);
  } else if (!isFull()) {
    next.emplace_back(name);
  }
  defaults_.set(kDefaultsKey, next);
  names.set(std::move(next));
}

void PinStore::record(const std::vector<ProcessSample>& processes) {
  if (names().empty()) return;
  const double now = clock_.absoluteNow();
  if (now - lastRecord_ < kRecordInterval) return;
  lastRecord_ = now;
  for (const auto& name : names()) {
    double value = 0;
    for (const auto& process : processes)
      if (process.name == name) value = std::max(value, process.cpuPercent);
    auto& track = tracks_[name];
    track.push_back(value);
    if (track.size() > kTrackLength) track.erase(track.begin(), track.end() - kTrackLength);
  }
}

std::vector<ProcessSample> PinStore::partition(const std::vector<ProcessSample>& list) const {
  if (names().empty()) return list;
  std::vector<ProcessSample> pinned;
  std::vector<ProcessSample> rest;
  std::set<std::string_view> taken;
  for (const auto& row : list) {
    if (isPinned(row.name) && taken.insert(row.name).second)
      pinned.push_back(row);
    else
      rest.push_back(row);
  }
  pinned.insert(pinned.end(), rest.begin(), rest.end());
  return pinned;
}

void PinStore::seed(std::vector<double> track, const std::string& name) { tracks_[name] = std::move(track); }

PinnedTrend PinStore::trend(const std::string& name) const {
  const auto it = tracks_.find(name);
  return it == tracks_.end() ? PinnedTrend{} : PinnedTrend{it->second};
}

}  // namespace quillmark
