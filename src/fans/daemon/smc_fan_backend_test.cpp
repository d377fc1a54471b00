#include "fans/daemon/smc_fan_backend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace quillmark {
namespace {

using ::testing::ElementsAre;

// An SMC whose fans thermalmonitord may hold: while held, mode writes fail until Ftst = 1 and
// then still read back 3 for a number of attempts.
class FakeSmc final : public SmcFanAccess {
 public:
  std::map<std::string, double> keys;
  std::vector<std::string> writes;
  bool systemHolds = false;
  int attemptsUntilReleased = 0;

  std::optional<double> read(std::string_view key) override {
    const auto it = keys.find(std::string(key));
    return it == keys.end() ? std::nullopt : std::optional<double>(it->second);
  }
  bool write(std::string_view key, double value) override {
    const std::string name(key);
    if (!keys.count(name)) return false;
    const bool isMode = name.size() == 4 && (name.substr(2) == "Md" || name.substr(2) == "md");
    if (isMode && value == 1.0 && systemHolds) {
      if (keys["Ftst"] != 1.0) return false;
      if (attemptsUntilReleased-- > 0) {
        keys[name] = 3.0;
        return true;
      }
    }
    writes.push_back(name + "=" + std::to_string(static_cast<int>(value)));
    keys[name] = value;
    return true;
  }
};

class SmcFanBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    smc.keys = {{"FNum", 2},    {"F0Ac", 1800}, {"F0Mn", 1200}, {"F0Mx", 5800}, {"F0Md", 0}, {"F0Tg", 0},
                {"F1Ac", 1900}, {"F1Mn", 1300}, {"F1Mx", 6200}, {"F1Md", 0},    {"F1Tg", 0}, {"Ftst", 0}};
  }
  FakeSmc smc;
  double slept = 0;
  SmcFanBackend backend{smc, [this](double s) { slept += s; }};
};

TEST_F(SmcFanBackendTest, FloorIsManualModeThenAClampedTargetAndRestoreGoesBackToAutomatic) {
  ASSERT_TRUE(backend.holdFloor(500));
  ASSERT_TRUE(backend.holdFloor(90000));
  EXPECT_THAT(smc.writes,
              ElementsAre("F0Md=1", "F0Tg=1200", "F1Md=1", "F1Tg=1300", "F0Tg=5800", "F1Tg=6200"));
  EXPECT_TRUE(backend.readFans()[1].forced);
  smc.writes.clear();
  EXPECT_TRUE(backend.restore());
  EXPECT_THAT(smc.writes, ElementsAre("F0Md=0", "F1Md=0"));  // Ftst was never touched
  EXPECT_FALSE(backend.readFans()[0].forced);
}

TEST_F(SmcFanBackendTest, AHeldFanIsAskedForWithFtstAndRetriedUntilItLetsGo) {
  smc.systemHolds = true;
  smc.attemptsUntilReleased = 29;  // read back as 3 (system-owned) 29 times after Ftst
  smc.keys.erase("F0Md");
  smc.keys["F0md"] = 3;  // the lower-case spelling of some models
  ASSERT_TRUE(backend.holdFloor(3000));
  EXPECT_THAT(smc.writes, ElementsAre("Ftst=1", "F0md=1", "F0Tg=3000", "F1Md=1", "F1Tg=3000"));
  EXPECT_NEAR(slept, 3.0, 1e-9);
  smc.writes.clear();
  EXPECT_TRUE(backend.restore());
  EXPECT_THAT(smc.writes, ElementsAre("F0md=0", "F1Md=0", "Ftst=0"));
}

TEST_F(SmcFanBackendTest, AFanThatNeverLetsGoOrHasNoMaximumIsNotForced) {
  smc.systemHolds = true;
  smc.attemptsUntilReleased = 1000;
  smc.keys.erase("F1Mx");
  EXPECT_FALSE(backend.holdFloor(3000));
  EXPECT_NEAR(slept, SmcFanBackend::kUnlockSeconds, 1e-6);  // gave up after the time limit
  EXPECT_THAT(smc.writes, ElementsAre("Ftst=1"));
  EXPECT_TRUE(backend.restore());
  EXPECT_EQ(smc.keys["Ftst"], 0.0);
}

TEST_F(SmcFanBackendTest, AStartAfterACrashHandsBackFansLeftInManualMode) {
  smc.keys["F1Md"] = 1;
  smc.keys["Ftst"] = 1;
  EXPECT_EQ(backend.restoreLeftovers(), 1);
  EXPECT_THAT(smc.writes, ElementsAre("F1Md=0", "Ftst=0"));
  // Without FNum the fans are counted by their speed keys.
  smc.keys.erase("FNum");
  EXPECT_EQ(backend.readFans().size(), 2u);
}

}  // namespace
}  // namespace quillmark
