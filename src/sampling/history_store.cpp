#include "sampling/history_store.h"

#include <algorithm>
#include <cmath>

#include "settings/l10n.h"

namespace quillmark {
namespace {

struct WindowInfo {
  HistoryWindow window;
  std::string_view raw;
  double seconds;
  std::size_t slots;
  std::string_view key;
};

// In enum order; windowInfo() indexes it by the enum's value.
constexpr std::array<WindowInfo, 6> kWindows = {{
    {HistoryWindow::live, "live", 3600, 120, "history.window.live"},
    {HistoryWindow::m30, "m30", 1800, 60, "history.window.m30"},
    {HistoryWindow::h1, "h1", 3600, 120, "history.window.h1"},
    {HistoryWindow::h6, "h6", 21600, 120, "history.window.h6"},
    {HistoryWindow::h12, "h12", 43200, 120, "history.window.h12"},
    {HistoryWindow::h24, "h24", 86400, 120, "history.window.h24"},
}};

constexpr bool tableInEnumOrder() {
  for (std::size_t i = 0; i < kWindows.size(); ++i)
    if (static_cast<std::size_t>(kWindows[i].window) != i) return false;
  return true;
}
static_assert(tableInEnumOrder());

const WindowInfo& windowInfo(HistoryWindow window) { return kWindows[static_cast<std::size_t>(window)]; }

}  // namespace

std::string_view rawValue(HistoryWindow window) { return windowInfo(window).raw; }

std::optional<HistoryWindow> historyWindowFromRaw(std::string_view raw) {
  for (const auto& info : kWindows)
    if (info.raw == raw) return info.window;
  return std::nullopt;
}

double seconds(HistoryWindow window) { return windowInfo(window).seconds; }
std::size_t slotCount(HistoryWindow window) { return windowInfo(window).slots; }
std::string_view displayNameKey(HistoryWindow window) { return windowInfo(window).key; }
std::string displayName(HistoryWindow window) { return L(displayNameKey(window)); }

void HistoryStore::record(double cpu, double memPct, std::optional<double> tempC) {
  const double now = clock_.absoluteNow();
  if (now - lastRecord_ < kInterval) return;
  lastRecord_ = now;
  append(cpu_, {now, cpu});
  append(mem_, {now, memPct});
  if (tempC) append(temp_, {now, *tempC});
}

bool HistoryStore::wantsTempSample() const { return clock_.absoluteNow() - lastRecord_ >= kInterval; }

void HistoryStore::append(std::vector<HistoryPoint>& series, HistoryPoint point) {
  series.push_back(point);
  if (series.size() > kCapacity)
    series.erase(series.begin(), series.end() - static_cast<std::ptrdiff_t>(kCapacity));
}

std::vector<std::optional<double>> HistoryStore::slots(const std::vector<HistoryPoint>& series,
                                                       HistoryWindow window) const {
  const double span = seconds(window);
  const std::size_t n = slotCount(window);
  const double width = span / static_cast<double>(n);
  const double start = clock_.absoluteNow() - span;
  std::vector<std::optional<double>> result(n);
  for (const auto& point : series) {
    if (!(point.time >= start)) continue;
    // A point stamped in the future (the clock was set back) lands in the last slot.
    const double position = std::trunc((point.time - start) / width);
    const std::size_t index =
        position >= static_cast<double>(n - 1) ? n - 1 : static_cast<std::size_t>(position);
    auto& slot = result[index];
    slot = slot ? std::max(*slot, point.value) : point.value;
  }
  return result;
}

void HistoryStore::seed(std::vector<HistoryPoint> cpu, std::vector<HistoryPoint> mem,
                        std::vector<HistoryPoint> temp) {
  cpu_ = std::move(cpu);
  mem_ = std::move(mem);
  temp_ = std::move(temp);
}

}  // namespace quillmark
