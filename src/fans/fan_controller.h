#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "base/main_loop.h"
#include "base/published.h"
#include "base/shared_instance.h"
#include "fans/comfort_sensors.h"
#include "fans/fan_helper_client.h"
#include "settings/setting.h"

namespace quillmark {

// Comfort cooling: every 5.0 s it reads the palm-rest temperature and, while it is above the
// user's target band, asks the fan helper to hold a fan floor that rises with the distance to the
// target; once the surface has cooled to target - 1 °C it hands the fans back. Switched by the
// comfortEnabled setting, aimed at comfortTargetC. One control timer at most.
//
// Status meanings: active = a floor is held; cooling = comfortable, fans released (the settings
// face shows it as "comfortable"); needsApproval = the daemon is not approved or a floor command
// failed; unavailable = no surface sensor. Main thread only.
class FanController {
 public:
  enum class Status { off, needsApproval, active, cooling, unavailable };
  static constexpr double kTickSeconds = 5.0;

  FanController(FanHelperClient& client, Setting<bool>& comfortEnabled, Setting<double>& comfortTargetC,
                ComfortSensors& sensors, MainLoop& loop);
  ~FanController();
  FanController(const FanController&) = delete;
  FanController& operator=(const FanController&) = delete;

  static FanController& shared() { return SharedInstance<FanController>::get(); }

  Published<Status> status{Status::off};
  Published<std::optional<double>> surfaceC;  // last palm-rest reading, °C
  Published<std::optional<double>> fanRPM;    // first fan's speed as the daemon last reported it

  [[nodiscard]] double targetC() const { return target_(); }
  void setTargetC(double celsius) { target_.set(celsius); }

  // At launch: starts when comfortEnabled is on.
  void startIfEnabled();
  // The settings toggle: stores comfortEnabled, then starts, or stops and releases the fans.
  void setEnabled(bool on);
  // After the user approved the daemon in the system settings.
  void retryAfterApproval();

  [[nodiscard]] bool running() const { return timer_ != 0; }
  // The settings face's text key for a status; withFan picks the form that shows the fan speed.
  [[nodiscard]] static std::string_view statusKey(Status status, bool withFan);

 private:
  void start();
  void tick();
  void readFirstFan();

  FanHelperClient& client_;
  Setting<bool>& enabled_;
  Setting<double>& target_;
  ComfortSensors& sensors_;
  MainLoop& loop_;
  MainLoop::TimerId timer_ = 0;
  std::shared_ptr<FanController*> lifetime_;  // replies check it before touching us
};

}  // namespace quillmark
