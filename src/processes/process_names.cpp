#include "processes/process_names.h"

#include <algorithm>
#include <array>

namespace quillmark::ProcessNames {
namespace {

constexpr std::array<std::string_view, 15> kDarwinBlocked = {
    "kernel_task", "launchd",        "WindowServer",  "loginwindow",        "Finder",
    "Dock",        "SystemUIServer", "ControlCenter", "NotificationCenter", "Spotlight",
    "syspolicyd",  "cfprefsd",       "powerd",        "distnoted",          "tccd"};

constexpr std::array<std::string_view, 8> kDarwinProtectedNames = {
    "kernel_task", "launchd",  "WindowServer", "loginwindow",
    "syspolicyd",  "cfprefsd", "powerd",       "backboardd"};

// Process names on Linux are the kernel's comm, cut at 15 bytes, so long names are listed both
// whole (as a caller may pass them) and as the kernel shows them.
constexpr auto kLinuxDesktopCore = std::to_array<std::string_view>(
    {// init and the service managers
     "init", "systemd", "systemd-logind", "systemd-journal", "systemd-journald", "systemd-udevd",
     // display servers and compositors
     "Xorg", "X", "Xwayland", "gnome-shell", "mutter", "kwin_x11", "kwin_wayland", "kwin_wayland_wr",
     "kwin_wayland_wrapper", "plasmashell", "sway", "Hyprland", "labwc", "wayfire", "weston", "river",
     "xfwm4", "openbox", "i3", "marco", "muffin", "cinnamon", "budgie-wm", "niri",
     // session managers
     "gnome-session", "gnome-session-b", "gnome-session-binary", "ksmserver", "xfce4-session", "lxsession",
     "lxqt-session", "mate-session", "cinnamon-sessio", "cinnamon-session",
     // D-Bus
     "dbus-daemon", "dbus-broker", "dbus-broker-lau", "dbus-broker-launch",
     // audio servers
     "pipewire", "pipewire-pulse", "wireplumber", "pulseaudio",
     // login managers
     "gdm", "gdm3", "gdm-session-wor", "gdm-session-worker", "sddm", "sddm-helper", "lightdm",
     // ourselves: the guardian must outlive a crash, the program must stay able to resume
     "quillmark", "quillmark-guard", "quillmark-guardian"});

}  // namespace

const std::span<const std::string_view> kDarwinPauseBlocked{kDarwinBlocked};
const std::span<const std::string_view> kLinuxPauseBlocked{kLinuxDesktopCore};
const std::span<const std::string_view> kDarwinProtected{kDarwinProtectedNames};
const std::span<const std::string_view> kLinuxProtected{kLinuxDesktopCore};

std::string_view firstWord(std::string_view name) {
  const auto start = name.find_first_not_of(' ');
  if (start == std::string_view::npos) return name;
  const auto rest = name.substr(start);
  return rest.substr(0, rest.find(' '));
}

namespace {
bool contains(std::span<const std::string_view> table, std::string_view name) {
  return std::find(table.begin(), table.end(), name) != table.end();
}
}  // namespace

bool isPauseBlocked(std::string_view name, std::span<const std::string_view> table) {
  return contains(table, firstWord(name)) || contains(table, name);
}

bool isProtected(std::string_view name, std::span<const std::string_view> table) {
  return contains(table, firstWord(name));
}

}  // namespace quillmark::ProcessNames
