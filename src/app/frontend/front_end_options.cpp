#include "app/frontend/front_end_options.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

namespace quillmark {
namespace {

// "--status-line" names the terminal's default, which plain "quillmark" means outside a graphical
// session (inside one it starts the desktop program).
constexpr std::array<std::pair<std::string_view, OutputFormat>, 4> kFormats = {{
    {"--status-line", OutputFormat::text},
    {"--json", OutputFormat::json},
    {"--waybar", OutputFormat::waybar},
    {"--i3bar", OutputFormat::i3bar},
}};

}  // namespace

std::string_view optionName(OutputFormat format) {
  for (const auto& [name, value] : kFormats) {
    if (value == format) return name;
  }
  return "--status-line";
}

std::optional<FrontEndOptions> FrontEndOptions::parse(int argc, const char* const* argv, std::string& error) {
  FrontEndOptions options;
  std::optional<std::string_view> chosenFormat;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    const auto format = std::find_if(kFormats.begin(), kFormats.end(),
                                     [arg](const auto& entry) { return entry.first == arg; });
    if (format != kFormats.end()) {
      if (chosenFormat && *chosenFormat != arg) {
        error = std::string(*chosenFormat) + " and " + std::string(arg) + " cannot be combined";
        return std::nullopt;
      }
      chosenFormat = arg;
      options.format = format->second;
    } else if (arg == "--help" || arg == "-h") {
      options.help = true;
    } else if (arg == "--version") {
      options.version = true;
    } else if (arg == "--serve") {
      options.serve = true;
    } else if (arg == "--desktop") {
      options.desktop = true;
    } else if (arg == "--count" || arg == "-n") {
      if (i + 1 >= argc) {
        error = "--count needs a number";
        return std::nullopt;
      }
      const char* text = argv[++i];
      char* end = nullptr;
      errno = 0;
      const long count = std::strtol(text, &end, 10);
      if (errno != 0 || end == text || *end != '\0' || count < 1) {
        error = std::string("--count needs a whole number of at least 1, not \"") + text + "\"";
        return std::nullopt;
      }
      options.count = count;
    } else {
      error = "unknown option \"" + std::string(arg) + "\"";
      return std::nullopt;
    }
  }
  return options;
}

}  // namespace quillmark
