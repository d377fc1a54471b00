#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmark {

// Freedesktop application entries (.desktop files) and icon-theme lookup, for the names and icons
// of Linux applications. Parsers take text; the lookups take the data folders to search, so tests
// run against a temporary tree. Not thread-safe (the index is built lazily); main thread.

// The [Desktop Entry] keys we use. `name` is localized for `language` ("de_CH" tries Name[de_CH],
// then Name[de], then Name).
struct DesktopEntry {
  std::string name;
  std::string icon;
  std::string execBasename;    // the file name of Exec's program, without its folder
  std::string startupWMClass;  // the window class its windows carry, often the executable's name
};
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string_view language);

// $XDG_DATA_HOME (default ~/.local/share), then $XDG_DATA_DIRS (default /usr/local/share:/usr/share).
[[nodiscard]] std::vector<std::string> xdgDataDirectories();

// The PNG file for an Icon= value: an absolute path to a PNG that exists, else the hicolor theme
// (the theme every icon must be in), then Adwaita (GNOME's, with its legacy application icons), at
// the size nearest 32 px, preferring larger, else pixmaps. Only PNG: the drawing code decodes PNG
// alone (SVG would need a renderer we do not carry), so an icon that exists only as SVG or XPM
// gives none and the row draws its monogram.
[[nodiscard]] std::optional<std::string> findIcon(std::string_view icon,
                                                  const std::vector<std::string>& dataDirs);

class DesktopEntries {
 public:
  DesktopEntries(std::vector<std::string> dataDirs, std::string language);

  // <appId>.desktop in the first folder that has it.
  [[nodiscard]] std::optional<DesktopEntry> byAppId(std::string_view appId);
  // <basename>.desktop, else the entry whose Exec program is `basename`, else the one whose
  // StartupWMClass is `basename` in any case (Electron and Java programs are found this way).
  [[nodiscard]] std::optional<DesktopEntry> byExecutable(std::string_view basename);
  [[nodiscard]] const std::vector<std::string>& dataDirs() const { return dataDirs_; }

 private:
  void buildIndex();

  std::vector<std::string> dataDirs_;
  std::string language_;
  bool indexed_ = false;
  std::map<std::string, DesktopEntry, std::less<>> byExec_;
  std::map<std::string, DesktopEntry, std::less<>> byWMClass_;  // keys in lower case
};

}  // namespace quillmark
