#include "insights/pressure_monitor.h"

#include <string>

#include "base/log.h"

namespace quillmark {

std::string_view name(PressureLevel level) {
  switch (level) {
    case PressureLevel::normal:
      return "normal";
    case PressureLevel::warning:
      return "warning";
    case PressureLevel::critical:
      return "critical";
  }
  return "normal";
}

PressureLevel levelFromDispatchFlags(std::uintptr_t flags) {
  if (flags & 0x4) return PressureLevel::critical;
  if (flags & 0x2) return PressureLevel::warning;
  return PressureLevel::normal;
}

PressureMonitor::PressureMonitor(std::unique_ptr<PressureSource> source,
                                 std::function<void(PressureLevel)> onRise)
    : onRise_(std::move(onRise)), source_(std::move(source)) {}

void PressureMonitor::start() {
  if (started_ || !source_) return;
  started_ = true;
  source_->start([this](PressureLevel reported) { handle(reported); });
}

void PressureMonitor::handle(PressureLevel newLevel) {
  const PressureLevel old = level.value();
  if (newLevel == old) return;
  Log::debug("Memory pressure changed: " + std::string(name(old)) + " → " + std::string(name(newLevel)));
  if (newLevel > old && onRise_) onRise_(newLevel);
  level.set(newLevel);
}

}  // namespace quillmark
