#include "processes/desktop_entries.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "base/file_util.h"
#include "base/paths.h"

namespace quillmark {
namespace {

bool isFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

// The program of an Exec= line: its first word, quotes removed, without its folder.
std::string execBasename(std::string_view exec) {
  exec.remove_prefix(std::min(exec.find_first_not_of(' '), exec.size()));
  std::string program;
  if (!exec.empty() && exec.front() == '"') {
    const auto end = exec.find('"', 1);
    program = std::string(exec.substr(1, end == std::string_view::npos ? std::string_view::npos : end - 1));
  } else {
    program = std::string(exec.substr(0, exec.find(' ')));
  }
  // "env VAR=x program" launches program.
  if (program == "env" || program == "/usr/bin/env") {
    auto rest = exec.substr(std::min(exec.find(' '), exec.size()));
    while (!rest.empty()) {
      rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
      const auto word = rest.substr(0, rest.find(' '));
      if (word.empty()) break;
      if (word.find('=') == std::string_view::npos) return execBasename(rest);
      rest.remove_prefix(word.size());
    }
  }
  const auto slash = program.rfind('/');
  return slash == std::string::npos ? program : program.substr(slash + 1);
}

std::string lowerAscii(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

}  // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string_view language) {
  const std::string full(language.substr(0, language.find_first_of(".@")));
  const std::string shortLanguage = full.substr(0, full.find('_'));
  DesktopEntry entry;
  std::string exec;
  int nameRank = 0;  // 1 Name, 2 Name[ll], 3 Name[ll_CC]
  bool inEntry = false;
  bool hidden = false;
  std::size_t at = 0;
  while (at < text.size()) {
    auto end = text.find('\n', at);
    if (end == std::string_view::npos) end = text.size();
    auto line = text.substr(at, end - at);
    at = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.starts_with('[')) {
      inEntry = line == "[Desktop Entry]";
      continue;
    }
    const auto equals = line.find('=');
    if (!inEntry || line.starts_with('#') || equals == std::string_view::npos) continue;
    auto key = line.substr(0, equals);
    while (!key.empty() && key.back() == ' ') key.remove_suffix(1);
    auto value = line.substr(equals + 1);
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    if (key == "Name" && nameRank < 1) {
      entry.name = value, nameRank = 1;
    } else if (!shortLanguage.empty() && key == "Name[" + shortLanguage + "]" && nameRank < 2) {
      entry.name = value, nameRank = 2;
    } else if (!full.empty() && key == "Name[" + full + "]") {
      entry.name = value, nameRank = 3;
    } else if (key == "Icon") {
      entry.icon = value;
    } else if (key == "Exec") {
      exec = value;
    } else if (key == "StartupWMClass") {
      entry.startupWMClass = value;
    } else if (key == "Hidden" && value == "true") {
      hidden = true;
    }
  }
  if (hidden || entry.name.empty()) return std::nullopt;
  entry.execBasename = execBasename(exec);
  return entry;
}

std::vector<std::string> xdgDataDirectories() {
  std::vector<std::string> dirs;
  const char* home = std::getenv("XDG_DATA_HOME");
  dirs.push_back(home && *home == '/' ? home : homeDirectory() + "/.local/share");
  const char* system = std::getenv("XDG_DATA_DIRS");
  std::string_view list = system && *system ? system : "/usr/local/share:/usr/share";
  while (!list.empty()) {
    const auto piece = list.substr(0, list.find(':'));
    if (!piece.empty() && piece.front() == '/') dirs.emplace_back(piece);
    list.remove_prefix(std::min(piece.size() + 1, list.size()));
  }
  return dirs;
}

std::optional<std::string> findIcon(std::string_view icon, const std::vector<std::string>& dataDirs) {
  if (icon.empty()) return std::nullopt;
  if (icon.front() == '/') {
    const std::string path(icon);
    return path.ends_with(".png") && isFile(path) ? std::optional(path) : std::nullopt;
  }
  if (icon.find('/') != std::string_view::npos) return std::nullopt;
  // "Icon=firefox.png" happens, though the value should be a bare name.
  const std::string name(icon.ends_with(".png") ? icon.substr(0, icon.size() - 4) : icon);
  static constexpr const char* kSizes[] = {"32x32",   "48x48", "64x64", "128x128", "256x256",
                                           "512x512", "24x24", "22x22", "16x16"};
  static constexpr const char* kThemes[][2] = {
      {"hicolor", "apps"}, {"Adwaita", "apps"}, {"Adwaita", "legacy"}};
  for (const auto& theme : kThemes)
    for (const auto& dir : dataDirs)
      for (const char* size : kSizes)
        if (const auto path = dir + "/icons/" + theme[0] + "/" + size + "/" + theme[1] + "/" + name + ".png";
            isFile(path))
          return path;
  for (const auto& dir : dataDirs)
    if (const auto path = dir + "/pixmaps/" + name + ".png"; isFile(path)) return path;
  return std::nullopt;
}

DesktopEntries::DesktopEntries(std::vector<std::string> dataDirs, std::string language)
    : dataDirs_(std::move(dataDirs)), language_(std::move(language)) {}

std::optional<DesktopEntry> DesktopEntries::byAppId(std::string_view appId) {
  if (appId.empty() || appId.find('/') != std::string_view::npos) return std::nullopt;
  for (const auto& dir : dataDirs_) {
    const auto text = readWholeFile(dir + "/applications/" + std::string(appId) + ".desktop");
    if (text) return parseDesktopEntry(*text, language_);
  }
  return std::nullopt;
}

std::optional<DesktopEntry> DesktopEntries::byExecutable(std::string_view basename) {
  if (basename.empty()) return std::nullopt;
  if (auto direct = byAppId(basename)) return direct;
  if (!indexed_) buildIndex();
  if (const auto it = byExec_.find(basename); it != byExec_.end()) return it->second;
  if (const auto it = byWMClass_.find(lowerAscii(basename)); it != byWMClass_.end()) return it->second;
  return std::nullopt;
}

void DesktopEntries::buildIndex() {
  indexed_ = true;
  for (const auto& dir : dataDirs_) {
    std::error_code error;
    for (const auto& file : std::filesystem::directory_iterator(dir + "/applications", error)) {
      if (file.path().extension() != ".desktop") continue;
      const auto text = readWholeFile(file.path().string());
      if (!text) continue;
      auto entry = parseDesktopEntry(*text, language_);
      // Earlier folders take precedence, as with every XDG lookup.
      if (!entry) continue;
      if (!entry->startupWMClass.empty()) byWMClass_.try_emplace(lowerAscii(entry->startupWMClass), *entry);
      if (!entry->execBasename.empty()) byExec_.try_emplace(entry->execBasename, std::move(*entry));
    }
  }
}

}  // namespace quillmark
