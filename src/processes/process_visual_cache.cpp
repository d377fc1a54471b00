#include "processes/process_visual_cache.h"

namespace quillmark {

const ProcessVisual& ProcessVisualCache::lookup(std::int32_t pid, std::uint64_t startTime,
                                                std::string_view fallbackName) {
  auto [entry, inserted] = cache_.try_emplace(pid);
  if (inserted || entry->second.startTime != startTime)
    entry->second = Entry{startTime, source_.lookup(pid, fallbackName)};
  return entry->second.visual;
}

void ProcessVisualCache::prune(const PidSet& valid) {
  std::erase_if(cache_, [&valid](const auto& entry) { return !valid.contains(entry.first); });
}

}  // namespace quillmark
