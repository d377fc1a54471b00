#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/shared_instance.h"
#include "sampling/samples.h"

namespace quillmark {

// How a process row is shown: the application's display name and its icon. The icon is named by
// a path that the drawing code loads: an image file (PNG, SVG, XPM) on Linux, the application
// bundle on macOS (whose icon the workspace supplies). Value type.
struct ProcessVisual {
  std::string name;
  std::optional<std::string> icon;
  bool operator==(const ProcessVisual&) const = default;
};

// Where visuals come from: the running application of a pid (NSRunningApplication on macOS, the
// .desktop entry of its systemd app unit or executable on Linux). Main thread.
class VisualSource {
 public:
  virtual ~VisualSource() = default;
  // The application's name when it has a non-empty one, else fallbackName; no icon without an
  // application.
  [[nodiscard]] virtual ProcessVisual lookup(std::int32_t pid, std::string_view fallbackName) = 0;

  static std::unique_ptr<VisualSource> makePlatform();
};

// Remembers each process's visual while it lives, so that the lookup (file reads or a framework
// call) happens once per process. A process is its pid and start time (ProcessSample::startTime):
// a pid reused by another program is looked up afresh, never shown with the old one's icon. Main
// thread only.
class ProcessVisualCache {
 public:
  explicit ProcessVisualCache(VisualSource& source) : source_(source) {}
  static ProcessVisualCache& shared() { return SharedInstance<ProcessVisualCache>::get(); }

  [[nodiscard]] const ProcessVisual& lookup(std::int32_t pid, std::uint64_t startTime,
                                            std::string_view fallbackName);
  // Keeps only the pids in valid (called with each snapshot's live pids).
  void prune(const PidSet& valid);
  [[nodiscard]] std::size_t size() const { return cache_.size(); }

 private:
  VisualSource& source_;
  struct Entry {
    std::uint64_t startTime = 0;
    ProcessVisual visual;
  };
  std::unordered_map<std::int32_t, Entry> cache_;  // one process per live pid
};

}  // namespace quillmark
