#include "fans/fan_controller.h"

#include <vector>

#include "base/log.h"
#include "fans/comfort_law.h"

namespace quillmark {

FanController::FanController(FanHelperClient& client, Setting<bool>& comfortEnabled,
                             Setting<double>& comfortTargetC, ComfortSensors& sensors, MainLoop& loop)
    : client_(client),
      enabled_(comfortEnabled),
      target_(comfortTargetC),
      sensors_(sensors),
      loop_(loop),
      lifetime_(std::make_shared<FanController*>(this)) {}

FanController::~FanController() {
  *lifetime_ = nullptr;
  if (timer_ != 0) loop_.cancelTimer(timer_);
}

std::string_view FanController::statusKey(Status value, bool withFan) {
  switch (value) {
    case Status::off:
      return "settings.comfort.status.off";
    case Status::needsApproval:
      return "settings.comfort.status.needsApproval";
    case Status::active:
      return withFan ? "settings.comfort.status.activeWithFan" : "settings.comfort.status.active";
    case Status::cooling:
      return withFan ? "settings.comfort.status.comfortableWithFan" : "settings.comfort.status.comfortable";
    case Status::unavailable:
      return "settings.comfort.status.unavailable";
  }
  return "settings.comfort.status.off";
}

void FanController::startIfEnabled() {
  if (enabled_()) start();
}

void FanController::setEnabled(bool on) {
  enabled_.set(on);
  if (on) {
    start();
    return;
  }
  if (timer_ != 0) {
    loop_.cancelTimer(timer_);
    timer_ = 0;
  }
  client_.releaseControl([](bool) {});
  status.set(Status::off);
  fanRPM.set(std::nullopt);
}

void FanController::retryAfterApproval() {
  client_.refreshState();
  if (client_.state() == FanHelperClient::State::enabled) start();
}

void FanController::start() {
  client_.refreshState();
  if (client_.state() != FanHelperClient::State::enabled) {
    (void)client_.registerDaemon();
    if (client_.state() != FanHelperClient::State::enabled) {
      status.set(Status::needsApproval);
      return;
    }
    status.set(Status::active);
  }
  if (timer_ != 0) return;
  std::weak_ptr<FanController*> weak = lifetime_;
  timer_ = loop_.addRepeatingTimer(kTickSeconds, [weak] {
    const auto alive = weak.lock();
    if (alive && *alive != nullptr) (*alive)->tick();
  });
  status.set(Status::active);
  tick();
}

void FanController::tick() {
  const std::optional<double> surface = sensors_.surfaceC();
  surfaceC.set(surface);
  if (!surface) {
    status.set(Status::unavailable);
    client_.releaseControl([](bool) {});
    return;
  }
  const double target = target_();
  const ComfortLaw::Decision decision = ComfortLaw::decide(*surface, target, sensors_.fanMaxRPM());
  if (decision.release) {
    // Sent on every cool tick, not only on the change: the daemon treats a spare release as harmless.
    client_.releaseControl([](bool) {});
    status.set(Status::cooling);
    readFirstFan();
    return;
  }
  Log::debug(ComfortLaw::logLine(*surface, target, decision));
  std::weak_ptr<FanController*> weak = lifetime_;
  client_.setFanFloor(decision.rpm, [weak](bool ok) {
    const auto alive = weak.lock();
    if (!alive || *alive == nullptr) return;
    FanController& self = **alive;
    self.status.set(ok ? Status::active : Status::needsApproval);
    self.readFirstFan();
  });
}

void FanController::readFirstFan() {
  std::weak_ptr<FanController*> weak = lifetime_;
  client_.readFans([weak](std::vector<FanReading> fans) {
    const auto alive = weak.lock();
    if (!alive || *alive == nullptr) return;
    (*alive)->fanRPM.set(fans.empty() ? std::nullopt : std::optional<double>(fans.front().actualRPM));
  });
}

}  // namespace quillmark
