#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fans/daemon/fan_backend.h"

namespace quillmark {

// The SMC as the macOS fan daemon needs it: numeric reads and writes of four-character keys,
// each write encoded in the key's own SMC type (ui8 for modes and flags, flt for speeds on
// Apple silicon). The daemon's SMC connection implements it; tests script it. Daemon thread only.
class SmcFanAccess {
 public:
  virtual ~SmcFanAccess() = default;
  [[nodiscard]] virtual std::optional<double> read(std::string_view key) = 0;
  [[nodiscard]] virtual bool write(std::string_view key, double value) = 0;

  // The AppleSMC user client, opened by the root daemon (macOS only). Absent when it cannot be
  // opened.
  [[nodiscard]] static std::unique_ptr<SmcFanAccess> open();
};

// Fans on Apple silicon. A floor is manual mode (F<n>Md = 1, or F<n>md on models that spell it
// so) with the target F<n>Tg = the floor clamped to [F<n>Mn, F<n>Mx]; mode before target. When
// thermalmonitord holds the fans the mode write is refused (or reads back 3) until Ftst = 1 asks
// it to let go, which takes a few seconds: the write is retried every kRetrySeconds for up to
// kUnlockSeconds. Restoring writes mode 0 for every fan taken, then Ftst = 0. A fan without a
// readable maximum is never forced. sleep is how the retry waits (tests pass a fake).
class SmcFanBackend final : public FanBackend {
 public:
  static constexpr int kMaxFans = 10;
  static constexpr double kRetrySeconds = 0.1;
  static constexpr double kUnlockSeconds = 10.0;

  SmcFanBackend(SmcFanAccess& smc, std::function<void(double seconds)> sleep);

  std::vector<FanReading> readFans() override;
  bool holdFloor(int rpm) override;
  bool restore() override;

  // At start: hands back fans left in manual mode (and an Ftst left set) by a run that
  // crashed. Returns how many fans it handed back.
  int restoreLeftovers();

 private:
  [[nodiscard]] int fanCount();
  [[nodiscard]] std::string modeKey(int fan);
  bool enterManual(int fan);

  SmcFanAccess& smc_;
  std::function<void(double)> sleep_;
  std::vector<int> taken_;  // fans this daemon put in manual mode
  bool unlocked_ = false;   // whether it wrote Ftst = 1
};

}  // namespace quillmark
