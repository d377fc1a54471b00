#pragma once

#include <string>
#include <string_view>

#include "settings/launch_at_login.h"

namespace quillmark {

// Launch at login on Linux: the XDG autostart entry $XDG_CONFIG_HOME/autostart/quillmark.desktop
// (default ~/.config/autostart). Enabled means the file exists and neither Hidden=true nor
// X-GNOME-Autostart-enabled=false turns it off. Enabling writes the entry atomically, pointing at
// the running binary; disabling removes it. There is no approval step, so the state is never
// "requiresApproval".
class XdgAutostartService final : public LoginItemService {
 public:
  // The entry path and the executable are read from the environment and /proc at each call.
  XdgAutostartService() = default;
  // Fixed paths, for tests.
  XdgAutostartService(std::string entryPath, std::string executable)
      : entryPath_(std::move(entryPath)), executable_(std::move(executable)) {}

  long status() override;
  std::optional<std::string> registerItem() override;
  std::optional<std::string> unregisterItem() override;
  void openSystemSettings() override;

  [[nodiscard]] std::string entryPath() const;
  [[nodiscard]] std::string executable() const;

  // Whether an entry's text leaves it switched on (keys of the [Desktop Entry] group only).
  [[nodiscard]] static bool entryIsEnabled(std::string_view contents);
  // The entry that starts executable; absent for a path no entry can express (a line break).
  [[nodiscard]] static std::optional<std::string> entryText(std::string_view executable);

 private:
  std::string entryPath_;
  std::string executable_;
};

}  // namespace quillmark
