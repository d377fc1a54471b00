#include "app/frontend/waybar_output.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "app/frontend/status_tooltip.h"

namespace quillmark {

std::string markupEscaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string waybarLine(const Monitor::Snapshot& snapshot, const BarContext& context, std::string_view text) {
  using nlohmann::json;
  const BarAlarms alarms = context.alarms(snapshot);
  json classes = json::array();
  if (alarms.cpuHigh) classes.push_back("cpu-high");
  if (alarms.memoryHigh) classes.push_back("mem-high");
  if (alarms.hot) classes.push_back("hot");
  const auto cpu = cpuPercent(snapshot);

  const json line = {
      {"text", markupEscaped(text)},
      {"tooltip", markupEscaped(statusTooltip(snapshot, context))},
      {"class", classes},
      {"percentage", cpu ? json(std::lround(*cpu)) : json(nullptr)},
  };
  // Process names are whatever the kernel holds; invalid UTF-8 is replaced, never fatal.
  return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace quillmark
