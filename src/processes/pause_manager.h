#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/defaults_store.h"
#include "base/main_loop.h"
#include "base/published.h"
#include "base/shared_instance.h"
#include "processes/paused_group.h"
#include "processes/process_os.h"

namespace quillmark {

// Freezes whole applications and thaws them again. It remembers every group it froze (published
// in `paused`, in pause order, and stored under "pausedGroups" at every change), never thaws a
// group whose leader has been replaced (start-stamp guard), forgets groups thawed behind its
// back, and thaws a frozen application by itself when the user brings it to the front (a 0.5 s
// watch that runs exactly while something is paused).
//
// Never signals pid ≤ 1, this program's pid or its own process group, a group led by a blocked
// process, or (without a freezable unit) a terminal's foreground job. Main thread only.
class PauseManager {
 public:
  struct Environment {
    DefaultsStore& defaults;
    MainLoop& loop;
    Clock& clock;
    ProcessOS os;
    FrontmostAppSource* frontmost = nullptr;  // none: no watch of the front application
  };

  // Loads the stored records (damaged ones are dropped) and reconciles them at once.
  explicit PauseManager(Environment environment);
  ~PauseManager();
  PauseManager(const PauseManager&) = delete;
  PauseManager& operator=(const PauseManager&) = delete;

  static PauseManager& shared() { return SharedInstance<PauseManager>::get(); }

  Published<std::vector<PausedGroup>> paused;

  [[nodiscard]] bool canPause(std::int32_t pid, std::string_view name);
  // False when refused, already paused, or the stop failed; a failed pause leaves no record.
  bool pause(std::int32_t pid, std::string_view name);
  // Thaws the group unless its leader was replaced; the record is forgotten either way.
  void resume(const PausedGroup& group);
  void resumeAll();
  // The record of pid's process group, if that group is paused.
  [[nodiscard]] std::optional<PausedGroup> entry(std::int32_t pid);
  // Forgets, without signalling, every record whose group is no longer frozen by us.
  void reconcile();

  static constexpr double kWatchInterval = 0.5;
  static constexpr double kActivateDelay = 0.3;

 private:
  void setPaused(std::vector<PausedGroup> groups, bool store);
  void syncWatch();
  void checkFrontmost();

  Environment env_;
  MainLoop::TimerId watchTimer_ = 0;
  // Lets a delayed activation that outlives the manager do nothing.
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillmark
