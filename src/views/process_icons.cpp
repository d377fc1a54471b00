#include "views/process_icons.h"

namespace quillmark {

std::shared_ptr<const Image> ProcessIconCache::icon(std::int32_t pid, std::uint64_t startTime,
                                                    const std::string& name) {
  const ProcessVisual& visual = visuals_.lookup(pid, startTime, name);
  if (!visual.icon) return nullptr;
  auto it = images_.find(*visual.icon);
  if (it == images_.end()) {
    std::shared_ptr<const Image> decoded;
    if (auto image = loader_.load(*visual.icon)) decoded = std::make_shared<const Image>(std::move(*image));
    it = images_.emplace(*visual.icon, std::move(decoded)).first;
  }
  return it->second;
}

}  // namespace quillmark
