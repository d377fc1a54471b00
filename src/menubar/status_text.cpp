#include "menubar/status_text.h"

#include "settings/format.h"
#include "settings/l10n.h"

namespace quillmark {

std::string statusText(const CPUSample& cpu, const MemorySample& memory, const NetSample& network,
                       bool showNetSpeed, const L10n& l10n) {
  std::string text = L(l10n, "menu.statusText", cpu.total, memory.usageFraction() * 100.0);
  if (showNetSpeed) {
    text +=
        "  \u2193" + Format::compactSpeed(network.downBps) + " \u2191" + Format::compactSpeed(network.upBps);
  }
  return text;
}

std::string statusText(const CPUSample& cpu, const MemorySample& memory, const NetSample& network,
                       bool showNetSpeed) {
  return statusText(cpu, memory, network, showNetSpeed, L10n::shared());
}

}  // namespace quillmark
