#include "insights/alert_manager.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "base/log.h"
#include "settings/format.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"

namespace quillmark {
namespace {

// Whole numbers cut toward zero; a value no int can hold (a broken sensor) shows as 0.
int wholeNumber(double value) {
  const double cut = std::trunc(value);
  if (!(std::fabs(cut) <= static_cast<double>(std::numeric_limits<int>::max()))) return 0;
  return static_cast<int>(cut);
}

std::string oneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

}  // namespace

AlertManager::AlertManager(Environment environment) : env_(std::move(environment)) {}

std::string_view AlertManager::rawValue(Metric metric) {
  switch (metric) {
    case Metric::cpu:
      return "cpu";
    case Metric::memory:
      return "memory";
    case Metric::temperature:
      return "temperature";
  }
  return "cpu";
}

void AlertManager::activate() {
  env_.center.activate([this] {
    if (panelOpener) panelOpener();
  });
}

void AlertManager::requestAuthorization(std::function<void(bool granted)> completion) {
  env_.center.requestAuthorization(std::move(completion));
}

AlertManager::State AlertManager::state(Metric metric) const {
  const auto it = states_.find(metric);
  return it != states_.end() ? it->second : State{};
}

bool AlertManager::wantsProcessScan() const {
  if (!env_.settings.alertsEnabled()) return false;
  for (Metric metric : {Metric::cpu, Metric::memory}) {
    const State s = state(metric);
    if (!s.alerted && s.overCount + 1 >= kSustainTicks) return true;
  }
  return false;
}

void AlertManager::evaluate(double cpu, double memPct, std::optional<double> tempC) {
  const SettingsManager& settings = env_.settings;
  if (!settings.alertsEnabled()) return;
  step(Metric::cpu, cpu, settings.cpuAlarmThreshold());
  step(Metric::memory, memPct, settings.memAlarmThreshold());
  if (tempC) step(Metric::temperature, *tempC, settings.tempAlarmThreshold());
}

void AlertManager::step(Metric metric, double value, double threshold) {
  State s = state(metric);
  if (value < threshold) {
    states_[metric] = State{};
    return;
  }
  ++s.overCount;
  if (s.overCount >= kSustainTicks && !s.alerted) {
    s.alerted = true;
    states_[metric] = s;
    fire(metric, value, threshold);
    return;
  }
  states_[metric] = s;
}

void AlertManager::fire(Metric metric, double value, double threshold) {
  const L10n& l10n = env_.l10n;
  std::string title;
  std::string body;
  switch (metric) {
    case Metric::cpu:
      title = L(l10n, "alert.cpu.title");
      body = L(l10n, "alert.cpu.body", wholeNumber(value), wholeNumber(threshold));
      break;
    case Metric::memory:
      title = L(l10n, "alert.memory.title");
      body = L(l10n, "alert.memory.body", wholeNumber(value), wholeNumber(threshold));
      break;
    case Metric::temperature: {
      const TempUnit unit = env_.settings.tempUnit();
      title = L(l10n, "alert.temp.title");
      body = L(l10n, "alert.temp.body", display(unit, value), display(unit, threshold));
      break;
    }
  }
  // On a line of its own: joining two sentences with a space is wrong in Chinese and Japanese.
  if (const std::string why = cause(metric); !why.empty()) body += "\n" + why;
  env_.center.deliver({"alert." + std::string(rawValue(metric)), title, body});
  Log::debug("Alert notification: " + title + " — " + oneLine(body));
}

std::string AlertManager::cause(Metric metric) const {
  const Context context = env_.context ? env_.context() : Context{};
  const L10n& l10n = env_.l10n;
  const auto& processes = context.processes;
  switch (metric) {
    case Metric::cpu: {
      if (processes.empty()) return {};
      const auto top = std::max_element(processes.begin(), processes.end(), [](const auto& a, const auto& b) {
        return a.cpuPercent < b.cpuPercent;
      });
      return L(l10n, "alert.cause.cpu", top->name, wholeNumber(top->cpuPercent));
    }
    case Metric::memory: {
      if (processes.empty()) return {};
      const auto top = std::max_element(processes.begin(), processes.end(), [](const auto& a, const auto& b) {
        return a.memoryBytes < b.memoryBytes;
      });
      return L(l10n, "alert.cause.memory", top->name, Format::byteString(top->memoryBytes));
    }
    case Metric::temperature: {
      const ThermalSample& t = context.thermal;
      const std::pair<const std::optional<double>*, std::string_view> sensors[] = {
          {&t.cpuC, "alert.sensor.cpu"},
          {&t.gpuC, "alert.sensor.gpu"},
          {&t.batteryC, "alert.sensor.battery"},
          {&t.surfaceC, "alert.sensor.surface"}};
      const std::optional<double>* hottest = nullptr;
      std::string_view key;
      for (const auto& [reading, sensorKey] : sensors) {
        if (*reading && std::isfinite(**reading) && (!hottest || **reading > **hottest)) {
          hottest = reading;
          key = sensorKey;
        }
      }
      if (!hottest) return {};
      return L(l10n, "alert.cause.temperature", L(l10n, key), display(env_.settings.tempUnit(), **hottest));
    }
  }
  return {};
}

}  // namespace quillmark
