#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/linux_main_loop.h"
#include "processes/pause_manager.h"
#include "processes/pin_store.h"
#include "processes/termination.h"
#include "sampling/monitor.h"
#include "settings/settings_manager.h"

struct sd_bus;
struct sd_bus_slot;

namespace quillmark {

// The scripting interface of a running Quillmark: the object /com/quillmark/Quillmark with the
// interface com.quillmark.Quillmark1 on the session bus, under the well-known name
// com.quillmark.Quillmark, which is also the single-instance lock (a second instance cannot claim
// it). Methods:
//   Snapshot() -> s          the latest snapshot as the one-line JSON of --json
//   Processes() -> s         the ranked process list as a JSON array (pid, name, cpuPercent,
//                            memoryBytes, paused, pinned)
//   Pause(i pid), Resume(i pid), ResumeAll() -> u (groups resumed)
//   Terminate(i pid, b force) force stands for the user's confirmation; without it only names on
//                            the pre-authorised list are ended
//   Pin(s name), Unpin(s name)
//   OpenPanel()              opens the panel under the tray item (the desktop program; a second
//                            start of `quillmark` calls it); refused by an instance without one
// Refusals come back as errors named com.quillmark.Quillmark1.Error.<Reason> with a sentence.
//
// sd-bus is driven by the main loop (its descriptor is watched), so calls run on the main
// thread with the services they touch. Main thread only.
class ScriptingService {
 public:
  static constexpr const char* kBusName = "com.quillmark.Quillmark";
  static constexpr const char* kObjectPath = "/com/quillmark/Quillmark";
  static constexpr const char* kInterface = "com.quillmark.Quillmark1";

  // What the methods act on; all must outlive serve()'s object.
  struct Services {
    Monitor& monitor;
    PauseManager& pauses;
    ProcessTerminator& terminator;
    PinStore& pins;
    SettingsManager& settings;
    // The latest snapshot line; absent until the first measurement is in.
    std::function<std::optional<std::string>()> snapshotJson;
    // Shows the panel; absent where the instance has none (--serve).
    std::function<void()> openPanel = nullptr;
  };

  // Connects to the session bus and claims the name. Absent, with a sentence in `error`, when
  // there is no session bus or another instance holds the name. Claim before building anything
  // that a second instance must not touch (stored paused groups, say).
  [[nodiscard]] static std::unique_ptr<ScriptingService> claim(LinuxMainLoop& loop, std::string& error);
  ~ScriptingService();
  ScriptingService(const ScriptingService&) = delete;
  ScriptingService& operator=(const ScriptingService&) = delete;

  // Exports the object and starts answering calls from the loop.
  [[nodiscard]] bool serve(Services services, std::string& error);

  // Called once when the bus connection is lost (the name, and so the lock, is gone with it).
  std::function<void()> onDisconnected;

 private:
  ScriptingService(LinuxMainLoop& loop, sd_bus* bus);
  void pump();

  LinuxMainLoop& loop_;
  sd_bus* bus_ = nullptr;
  sd_bus_slot* slot_ = nullptr;
  int fd_ = -1;
  std::optional<Services> services_;

  friend struct ScriptingMethods;
};

}  // namespace quillmark
