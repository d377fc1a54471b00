#include "app/frontend/i3bar_output.h"

#include <nlohmann/json.hpp>

#include "settings/format.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

using nlohmann::json;

json block(std::string_view name, std::string_view instance, std::string fullText, std::string shortText,
           bool over) {
  json result = {{"name", name},
                 {"instance", instance},
                 {"full_text", std::move(fullText)},
                 {"short_text", std::move(shortText)}};
  if (over) {
    result["urgent"] = true;
    result["color"] = I3barOutput::kOverColor;
  }
  return result;
}

}  // namespace

std::string I3barOutput::header() { return json{{"version", 1}}.dump(); }

std::string I3barOutput::blocks(const Monitor::Snapshot& s, const BarContext& context) {
  const L10n& l10n = context.l10n;
  const BarAlarms alarms = context.alarms(s);
  json list = json::array();
  if (const auto cpu = cpuPercent(s)) {
    list.push_back(
        block("cpu", "total", L(l10n, "bar.cpu", *cpu), L(l10n, "bar.cpu.short", *cpu), alarms.cpuHigh));
  }
  if (const auto memory = memoryPercent(s)) {
    list.push_back(block("memory", "used", L(l10n, "bar.memory", *memory),
                         L(l10n, "bar.memory.short", *memory), alarms.memoryHigh));
  }
  if (s.thermal.cpuC) {
    const int degrees = display(context.tempUnit, *s.thermal.cpuC);
    const char* key = context.tempUnit == TempUnit::celsius ? "vitals.temperature.cpu.celsius"
                                                            : "vitals.temperature.cpu.fahrenheit";
    list.push_back(block("temperature", "cpu", L(l10n, key, degrees),
                         L(l10n, "bar.temperature.short", degrees), alarms.hot));
  }
  if (context.showNetSpeed) {
    const std::string down = "\u2193" + Format::compactSpeed(s.network.downBps);
    list.push_back(
        block("network", "total", down + " \u2191" + Format::compactSpeed(s.network.upBps), down, false));
  }
  return list.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string I3barOutput::nextElement(const Monitor::Snapshot& snapshot, const BarContext& context) {
  const std::string array = blocks(snapshot, context);
  if (first_) {
    first_ = false;
    return array;
  }
  return "," + array;
}

}  // namespace quillmark
