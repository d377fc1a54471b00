#pragma once

#include <array>
#include <string_view>

#include "sampling/samples.h"

namespace quillmark {

// The Mac's temperatures from SMC keys, in °C: the hottest CPU key, the hottest GPU key, the
// battery key and the hottest palm-rest key; a group whose keys are all missing is absent. Any
// value the SMC decodes is taken (an idle sensor's 0 too). Stateless apart from the SMC's own
// key cache; called on the monitor's queue (and, for surfaceKeys, by comfort cooling).
class ThermalReader {
 public:
  ThermalReader() = delete;

  static constexpr std::array<std::string_view, 8> cpuKeys = {"Tp0Y", "Tp0X", "Tp01", "Tp0E",
                                                              "Tp0A", "Tp0C", "Tp09", "Tp0D"};
  static constexpr std::array<std::string_view, 6> gpuKeys = {"Tg0D", "Tg05", "Tg0L", "Tg0J", "Tg0b", "Tg0f"};
  static constexpr std::string_view batteryKey = "TB0T";
  // The palm-rest sensors, also read by the comfort-cooling controller.
  static constexpr std::array<std::string_view, 2> surfaceKeys = {"Ts0P", "Ts1P"};

  // Up to 17 SMC reads; keys the machine lacks cost nothing after the first call.
  [[nodiscard]] static ThermalSample read();
};

}  // namespace quillmark
