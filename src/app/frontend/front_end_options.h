#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

// What the terminal program prints on each refresh.
enum class OutputFormat {
  text,    // the status text, one line ("--status-line", the default)
  json,    // every snapshot field, one JSON line
  waybar,  // one object per line for waybar's custom module (return-type json)
  i3bar,   // the i3bar/swaybar protocol: a header, then an endless array of block arrays
};

[[nodiscard]] std::string_view optionName(OutputFormat format);

// The command line of the terminal program.
struct FrontEndOptions {
  OutputFormat format = OutputFormat::text;
  bool help = false;
  bool version = false;
  bool serve = false;         // --serve: no output, answer the scripting interface on the session bus
  bool desktop = false;       // --desktop: the desktop program even without a tray to show it
  std::optional<long> count;  // lines (status arrays for i3bar) to print before exiting

  // Absent with a message in `error` for an unknown option, two formats, or a bad count.
  static std::optional<FrontEndOptions> parse(int argc, const char* const* argv, std::string& error);
};

}  // namespace quillmark
