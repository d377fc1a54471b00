#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

// Where comfort cooling reads the palm-rest temperature (°C) and the first fan's top speed
// (rpm): the SMC on macOS, the sensor the user chose on Linux. Absent means the machine does not
// report it. Called on the main thread.
class ComfortSensors {
 public:
  virtual ~ComfortSensors() = default;
  [[nodiscard]] virtual std::optional<double> surfaceC() = 0;
  [[nodiscard]] virtual std::optional<double> fanMaxRPM() = 0;

  // This platform's sensors. surfaceSensor names the sensor the user chose for the palm rest
  // ("surfaceSensor", read at every tick; Linux only: a Mac's palm-rest keys are fixed).
  [[nodiscard]] static std::unique_ptr<ComfortSensors> makePlatform(
      std::function<std::string()> surfaceSensor);
};

// The SMC's view: the palm rest is the warmest of ThermalReader::surfaceKeys (the earlier on a
// tie), the top speed is "F0Mx". readKey is one SMC read (absent when the key is missing or
// unreadable).
class SmcComfortSensors final : public ComfortSensors {
 public:
  using KeyReader = std::function<std::optional<double>(std::string_view key)>;
  static constexpr std::string_view kFanMaxKey = "F0Mx";

  explicit SmcComfortSensors(KeyReader readKey) : readKey_(std::move(readKey)) {}

  std::optional<double> surfaceC() override;
  std::optional<double> fanMaxRPM() override { return readKey_(kFanMaxKey); }

 private:
  KeyReader readKey_;
};

}  // namespace quillmark
