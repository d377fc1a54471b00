#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "processes/process_visual_cache.h"
#include "views/image_loader.h"

namespace quillmark {

// The icon of a process row: its application's icon reference from the visual cache (once per
// pid), decoded by the loader once per reference and shared by every process of that
// application. Failures are remembered too, so a process without a readable icon costs one
// attempt, never one per frame. Keep one for the program's life (the panel is rebuilt on every
// opening; the icons need not be). Main thread only.
class ProcessIconCache {
 public:
  ProcessIconCache(ProcessVisualCache& visuals, ImageLoader& loader) : visuals_(visuals), loader_(loader) {}

  // Null without an application or a readable icon: the row then draws its monogram.
  [[nodiscard]] std::shared_ptr<const Image> icon(std::int32_t pid, std::uint64_t startTime,
                                                  const std::string& name);
  [[nodiscard]] std::size_t decodedCount() const { return images_.size(); }

 private:
  ProcessVisualCache& visuals_;
  ImageLoader& loader_;
  std::map<std::string, std::shared_ptr<const Image>, std::less<>> images_;
};

}  // namespace quillmark
