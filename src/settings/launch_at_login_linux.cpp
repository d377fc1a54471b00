#include "settings/launch_at_login_linux.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/log.h"
#include "base/file_util.h"
#include "base/paths.h"

namespace quillmark {
namespace {

std::string_view trim(std::string_view s) {
  const auto first = s.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  const auto last = s.find_last_not_of(" \t\r");
  return s.substr(first, last - first + 1);
}

// A desktop-entry string value: backslash is the escape character.
std::string escapeValue(std::string_view s) {
  std::string out;
  for (const char c : s) {
    if (c == '\\')
      out += "\\\\";
    else
      out += c;
  }
  return out;
}

// One Exec argument: quoted when it holds a reserved character, with ", `, $ and \ escaped inside
// the quotes, and % doubled so it is not read as a field code.
std::string execArgument(std::string_view path) {
  const bool needsQuotes = path.find_first_of(" \t\"'\\><~|&;$*?#()`") != std::string_view::npos;
  std::string out;
  if (needsQuotes) out += '"';
  for (const char c : path) {
    if (needsQuotes && (c == '"' || c == '`' || c == '$' || c == '\\')) out += '\\';
    if (c == '%') out += '%';
    out += c;
  }
  if (needsQuotes) out += '"';
  return escapeValue(out);
}

std::string errnoText() { return std::strerror(errno); }

}  // namespace

std::string XdgAutostartService::entryPath() const {
  if (!entryPath_.empty()) return entryPath_;
  // Our own config folder sits in $XDG_CONFIG_HOME too, so its parent is that folder, already
  // resolved by the same rules (a relative value is ignored).
  return parentDirectory(configDirectory()) + "/autostart/quillmark.desktop";
}

std::string XdgAutostartService::executable() const {
  if (!executable_.empty()) return executable_;
  return executablePath();
}

bool XdgAutostartService::entryIsEnabled(std::string_view contents) {
  bool inMainGroup = false;
  while (!contents.empty()) {
    const auto newline = contents.find('\n');
    const std::string_view line = trim(contents.substr(0, newline));
    contents = newline == std::string_view::npos ? std::string_view{} : contents.substr(newline + 1);
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[') {
      inMainGroup = line == "[Desktop Entry]";
      continue;
    }
    const auto equals = line.find('=');
    if (!inMainGroup || equals == std::string_view::npos) continue;
    const std::string_view key = trim(line.substr(0, equals));
    const std::string_view value = trim(line.substr(equals + 1));
    if (key == "Hidden" && value == "true") return false;
    if (key == "X-GNOME-Autostart-enabled" && value == "false") return false;
  }
  return true;
}

std::optional<std::string> XdgAutostartService::entryText(std::string_view executable) {
  if (executable.empty() || executable.find_first_of("\n\r") != std::string_view::npos) return std::nullopt;
  std::string text;
  text += "[Desktop Entry]\n";
  text += "Type=Application\n";
  text += "Name=Quillmark\n";
  text += "Comment=System monitor in the panel\n";
  text += "Exec=" + execArgument(executable) + "\n";
  // Session managers skip the entry if the binary has been removed since.
  text += "TryExec=" + escapeValue(executable) + "\n";
  text += "Terminal=false\n";
  text += "X-GNOME-Autostart-enabled=true\n";
  return text;
}

long XdgAutostartService::status() {
  const auto contents = readWholeFile(entryPath());
  if (!contents) return kNotRegistered;
  return entryIsEnabled(*contents) ? kEnabled : kNotRegistered;
}

std::optional<std::string> XdgAutostartService::registerItem() {
  const std::string program = executable();
  if (program.empty()) return "the program's own executable cannot be found";
  const auto text = entryText(program);
  if (!text) return "the executable path " + program + " cannot be written into an autostart entry";
  const std::string path = entryPath();
  if (!makeDirectories(parentDirectory(path)))
    return "cannot create " + parentDirectory(path) + ": " + errnoText();
  if (!writeFileAtomically(path, *text, 0644)) return "cannot write " + path + ": " + errnoText();
  return std::nullopt;
}

std::optional<std::string> XdgAutostartService::unregisterItem() {
  const std::string path = entryPath();
  if (unlink(path.c_str()) != 0 && errno != ENOENT) return "cannot remove " + path + ": " + errnoText();
  return std::nullopt;
}

void XdgAutostartService::openSystemSettings() {
  // Desktops disagree on where (or whether) login items are edited; there is no page to open.
  Log::debug("Launch at login: no system settings page for autostart entries on this desktop");
}

LoginItemService& LoginItemService::platform() {
  static XdgAutostartService service;
  return service;
}

}  // namespace quillmark
