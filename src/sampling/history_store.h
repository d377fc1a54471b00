#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/clock.h"
#include "base/published.h"
#include "base/shared_instance.h"

namespace quillmark {

// One recorded value. time is absolute seconds (since 2001-01-01 UTC); value is in the unit of its
// series (percent or degrees Celsius).
struct HistoryPoint {
  double time = 0;
  double value = 0;
  bool operator==(const HistoryPoint&) const = default;
};

// The spans the history chart offers, in picker order. `live` draws the engine's short arrays; its
// table values exist so every window answers the same questions.
enum class HistoryWindow { live, m30, h1, h6, h12, h24 };

inline constexpr std::array<HistoryWindow, 6> kAllHistoryWindows = {HistoryWindow::live, HistoryWindow::m30,
                                                                    HistoryWindow::h1,   HistoryWindow::h6,
                                                                    HistoryWindow::h12,  HistoryWindow::h24};

[[nodiscard]] std::string_view rawValue(HistoryWindow window);
[[nodiscard]] std::optional<HistoryWindow> historyWindowFromRaw(std::string_view raw);
// The span in seconds and the number of chart slots it is cut into (60 for m30, else 120).
[[nodiscard]] double seconds(HistoryWindow window);
[[nodiscard]] std::size_t slotCount(HistoryWindow window);
[[nodiscard]] std::string_view displayNameKey(HistoryWindow window);
[[nodiscard]] std::string displayName(HistoryWindow window);

// The 24-hour, low-resolution record of CPU load, memory use and CPU temperature: at most one point
// per series every 30 s, 2,881 points per series (24 h plus one), oldest first; older points slide
// out. Kept in memory only: every launch starts empty, so the charts show gaps where the program
// did not run. Main thread only.
class HistoryStore {
 public:
  static constexpr double kInterval = 30.0;
  static constexpr std::size_t kCapacity = 2881;

  explicit HistoryStore(const Clock& clock) : clock_(clock) {}
  HistoryStore(const HistoryStore&) = delete;
  HistoryStore& operator=(const HistoryStore&) = delete;

  // The process-wide store that the composition root (app/services) built and installed.
  static HistoryStore& shared() { return SharedInstance<HistoryStore>::get(); }

  // Called on every applied snapshot; stores a point only when 30 s have passed since the last
  // one. The temperature series gets a point only when tempC is present, so the three series
  // may differ in length.
  void record(double cpu, double memPct, std::optional<double> tempC);
  // True when the next record() will store a point (the engine reads the temperature for it).
  [[nodiscard]] bool wantsTempSample() const;

  // The series cut into slotCount(window) slots over the window ending now, oldest first. A slot
  // holds the largest value of its points, so short spikes survive; a slot without points is absent.
  [[nodiscard]] std::vector<std::optional<double>> slots(const std::vector<HistoryPoint>& series,
                                                         HistoryWindow window) const;

  // Replaces the three series wholesale (previews and diagnostics only).
  void seed(std::vector<HistoryPoint> cpu, std::vector<HistoryPoint> mem, std::vector<HistoryPoint> temp);

  [[nodiscard]] const std::vector<HistoryPoint>& cpu() const { return cpu_; }
  [[nodiscard]] const std::vector<HistoryPoint>& mem() const { return mem_; }
  [[nodiscard]] const std::vector<HistoryPoint>& temp() const { return temp_; }
  [[nodiscard]] double lastRecord() const { return lastRecord_; }

 private:
  static void append(std::vector<HistoryPoint>& series, HistoryPoint point);

  const Clock& clock_;
  std::vector<HistoryPoint> cpu_;
  std::vector<HistoryPoint> mem_;
  std::vector<HistoryPoint> temp_;
  double lastRecord_ = 0;
};

// The window the panel's history chart shows. Not stored: every launch starts at `live`. Main
// thread only.
class HistoryWindowState {
 public:
  Published<HistoryWindow> window{HistoryWindow::live};

  static HistoryWindowState& shared() { return SharedInstance<HistoryWindowState>::get(); }
};

}  // namespace quillmark
