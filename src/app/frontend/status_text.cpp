#include "app/frontend/status_text.h"

#include <cstdio>

namespace quillmark {
namespace {

// Rates are decimal (1000-based) and drop the unit suffix to stay narrow in a bar.
std::string compactRate(double bytesPerSecond) {
  char buffer[64];
  if (bytesPerSecond >= 1'000'000) {
    std::snprintf(buffer, sizeof buffer, "%.1fM", bytesPerSecond / 1'000'000);
  } else if (bytesPerSecond >= 1000) {
    std::snprintf(buffer, sizeof buffer, "%.0fK", bytesPerSecond / 1000);
  } else {
    std::snprintf(buffer, sizeof buffer, "%.0fB", bytesPerSecond);
  }
  return buffer;
}

}  // namespace

std::string statusText(const CPUSample& cpu, const MemorySample& memory, const NetSample& network,
                       bool showNetSpeed) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "CPU %.0f%% MEM %.0f%%", cpu.total, memory.usageFraction() * 100.0);
  std::string text = buffer;
  if (showNetSpeed) {
    text += "  \u2193" + compactRate(network.downBps) + " \u2191" + compactRate(network.upBps);
  }
  return text;
}

}  // namespace quillmark
