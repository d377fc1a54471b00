#include "app/frontend/status_tooltip.h"

#include <algorithm>
#include <vector>

#include "settings/format.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

constexpr std::size_t kTopProcesses = 3;

std::string temperature(double celsius, TempUnit unit) {
  return std::to_string(display(unit, celsius)) + (unit == TempUnit::celsius ? " °C" : " °F");
}

std::string batteryStatus(const BatterySample& battery, const L10n& l10n) {
  if (battery.isCharged) return L(l10n, "battery.status.charged");
  if (battery.isCharging) return L(l10n, "battery.status.charging");
  if (battery.externalConnected) return L(l10n, "battery.status.notCharging");
  return L(l10n, "battery.status.onBattery");
}

std::string printableName(std::string name) {
  for (char& c : name) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = ' ';
  }
  return name;
}

void addCpu(std::vector<std::string>& lines, const Monitor::Snapshot& s, const L10n& l10n) {
  const auto cpu = cpuPercent(s);
  if (!cpu) return;
  if (s.cpu.perCore.empty()) {
    lines.push_back(L(l10n, "bar.cpu", *cpu));
  } else {
    const double busiest = *std::max_element(s.cpu.perCore.begin(), s.cpu.perCore.end());
    lines.push_back(L(l10n, "tooltip.cpu", *cpu, busiest));
  }
}

void addMemory(std::vector<std::string>& lines, const Monitor::Snapshot& s, const L10n& l10n) {
  const auto percent = memoryPercent(s);
  if (!percent) return;
  const MemorySample& m = s.memory;
  lines.push_back(
      L(l10n, "tooltip.memory", Format::byteString(m.used()), Format::byteString(m.total), *percent));
  lines.push_back(L(l10n, "tooltip.memory.breakdown", Format::byteString(m.app), Format::byteString(m.wired),
                    Format::byteString(m.compressed), Format::byteString(m.cached)));
}

void addSensors(std::vector<std::string>& lines, const Monitor::Snapshot& s, const BarContext& context) {
  const L10n& l10n = context.l10n;
  const ThermalSample& t = s.thermal;
  if (t.cpuC) lines.push_back(L(l10n, "tooltip.temp.cpu", temperature(*t.cpuC, context.tempUnit)));
  if (t.gpuC) lines.push_back(L(l10n, "tooltip.temp.gpu", temperature(*t.gpuC, context.tempUnit)));
  if (t.batteryC)
    lines.push_back(L(l10n, "tooltip.temp.battery", temperature(*t.batteryC, context.tempUnit)));
  if (s.battery.percentage) {
    lines.push_back(L(l10n, "tooltip.battery", *s.battery.percentage, batteryStatus(s.battery, l10n)));
  }
  if (s.gpu) lines.push_back(L(l10n, "tooltip.gpu", s.gpu->deviceUtil));
}

void addProcesses(std::vector<std::string>& lines, const Monitor::Snapshot& s, const L10n& l10n) {
  std::vector<const ProcessSample*> busiest;
  for (const auto& process : s.processes) busiest.push_back(&process);
  const std::size_t shown = std::min(kTopProcesses, busiest.size());
  std::partial_sort(
      busiest.begin(), busiest.begin() + static_cast<std::ptrdiff_t>(shown), busiest.end(),
      [](const ProcessSample* a, const ProcessSample* b) { return a->cpuPercent > b->cpuPercent; });
  if (shown == 0) return;
  lines.push_back(L(l10n, "tooltip.processes"));
  for (std::size_t i = 0; i < shown; ++i) {
    lines.push_back("  " +
                    L(l10n, "tooltip.process", printableName(busiest[i]->name), busiest[i]->cpuPercent));
  }
}

}  // namespace

std::string statusTooltip(const Monitor::Snapshot& s, const BarContext& context) {
  const L10n& l10n = context.l10n;
  std::vector<std::string> lines;
  addCpu(lines, s, l10n);
  addMemory(lines, s, l10n);
  lines.push_back(L(l10n, "tooltip.network", Format::speedString(s.network.downBps),
                    Format::speedString(s.network.upBps)));
  if (s.diskTotal > 0) {
    lines.push_back(L(l10n, "tooltip.disk", Format::byteString(s.diskFree), Format::byteString(s.diskTotal)));
  }
  addSensors(lines, s, context);
  addProcesses(lines, s, l10n);

  std::string text;
  for (const auto& line : lines) {
    if (!text.empty()) text += '\n';
    text += line;
  }
  return text;
}

}  // namespace quillmark
