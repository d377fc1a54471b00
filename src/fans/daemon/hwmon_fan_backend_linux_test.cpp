#include "fans/daemon/hwmon_fan_backend_linux.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

using quillmark::testing::TempTree;

class HwmonFanBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // A laptop chip with one fan (min 1200, max 5000) and a board chip with a fan that reports
    // no limits; a pwm without an enable file is not a channel we may drive.
    tree.write("hwmon/hwmon0/name", "thinkpad\n");
    tree.write("hwmon/hwmon0/pwm1", "77\n");
    tree.write("hwmon/hwmon0/pwm1_enable", "2\n");
    tree.write("hwmon/hwmon0/fan1_input", "2100\n");
    tree.write("hwmon/hwmon0/fan1_min", "1200\n");
    tree.write("hwmon/hwmon0/fan1_max", "5000\n");
    tree.write("hwmon/hwmon1/name", "nct6775\n");
    tree.write("hwmon/hwmon1/pwm2", "255\n");
    tree.write("hwmon/hwmon1/pwm2_enable", "5\n");
    tree.write("hwmon/hwmon1/pwm3", "10\n");
    tree.write("hwmon/hwmon2/name", "coretemp\n");
    tree.write("hwmon/hwmon2/temp1_input", "71000\n");
    tree.write("hwmon/hwmon2/temp1_crit", "100000\n");
  }
  std::string read(const std::string& relative) { return readWholeFile(tree.path(relative)).value_or("?"); }

  TempTree tree;
  std::string state = tree.path("held.json");
};

TEST_F(HwmonFanBackendTest, FloorsAreClampedManualAndRestoredAsFound) {
  HwmonFanBackend backend(tree.path("hwmon"), state);
  ASSERT_EQ(backend.readFans().size(), 2u);
  EXPECT_EQ(backend.readFans()[0].maxRPM, 5000);
  ASSERT_TRUE(backend.holdFloor(500));  // below the first fan's minimum: held at 1200 of 5000
  EXPECT_EQ(read("hwmon/hwmon0/pwm1_enable"), "1\n");
  EXPECT_EQ(read("hwmon/hwmon0/pwm1"), "62\n");  // ceil(1200 / 5000 x 255)
  EXPECT_EQ(read("hwmon/hwmon1/pwm2"), "22\n");  // ceil(500 / 6000 x 255), no limits reported
  ASSERT_TRUE(backend.holdFloor(90000));         // above every maximum: full duty, never more
  EXPECT_EQ(read("hwmon/hwmon0/pwm1"), "255\n");
  EXPECT_TRUE(backend.readFans()[0].forced);
  // The originals were saved before the first write, and only then.
  EXPECT_NE(readWholeFile(state).value_or("").find("\"duty\":77"), std::string::npos);

  EXPECT_TRUE(backend.restore());
  EXPECT_EQ(read("hwmon/hwmon0/pwm1_enable"), "2\n");
  EXPECT_EQ(read("hwmon/hwmon0/pwm1"), "77\n");
  EXPECT_EQ(read("hwmon/hwmon1/pwm2_enable"), "5\n");
  EXPECT_EQ(read("hwmon/hwmon1/pwm3"), "10\n");
  EXPECT_FALSE(readWholeFile(state));
  EXPECT_TRUE(backend.restore());  // nothing held: harmless
}

TEST_F(HwmonFanBackendTest, AChannelThatCannotTakeItsDutyIsLeftAutomatic) {
  tree.remove("hwmon/hwmon1/pwm2");
  tree.makeDirectory("hwmon/hwmon1/pwm2");  // enable is writable, the duty write fails
  HwmonFanBackend backend(tree.path("hwmon"), state);
  EXPECT_TRUE(backend.holdFloor(3000));  // the other fan still took it
  EXPECT_EQ(read("hwmon/hwmon1/pwm2_enable"), "5\n");
  EXPECT_EQ(read("hwmon/hwmon0/pwm1_enable"), "1\n");
}

TEST_F(HwmonFanBackendTest, ALeftOverFloorIsRestoredAtStartAndForeignPathsAreIgnored) {
  {
    HwmonFanBackend crashed(tree.path("hwmon"), state);
    ASSERT_TRUE(crashed.holdFloor(4000));
  }  // gone without restore(), as a crash would leave it
  ASSERT_EQ(read("hwmon/hwmon0/pwm1_enable"), "1\n");
  tree.write("elsewhere", "keep\n");
  const std::string leftover = readWholeFile(state).value_or("");
  ASSERT_TRUE(writeFileAtomically(state, leftover.substr(0, leftover.size() - 3) + R"(,{"pwm":")" +
                                             tree.path("elsewhere") + R"(","enable":0,"duty":0}]})" + "\n"));
  HwmonFanBackend restarted(tree.path("hwmon"), state);
  EXPECT_EQ(restarted.restoreLeftovers(), 2);
  EXPECT_EQ(read("hwmon/hwmon0/pwm1_enable"), "2\n");
  EXPECT_EQ(read("hwmon/hwmon0/pwm1"), "77\n");
  EXPECT_EQ(read("hwmon/hwmon1/pwm2_enable"), "5\n");
  EXPECT_EQ(read("elsewhere"), "keep\n");
  EXPECT_FALSE(readWholeFile(state));
  // A damaged state file restores nothing and is cleared.
  ASSERT_TRUE(writeFileAtomically(state, "{\"channels\":[{\"pwm\":3}]"));
  EXPECT_EQ(restarted.restoreLeftovers(), 0);
  EXPECT_FALSE(readWholeFile(state));
}

TEST_F(HwmonFanBackendTest, OnlyACpuSensorAtItsCriticalLimitCountsAsOverheating) {
  HwmonFanBackend backend(tree.path("hwmon"), state);
  tree.write("hwmon/hwmon1/temp1_input", "120000\n");  // a board sensor, not the CPU
  tree.write("hwmon/hwmon1/temp1_crit", "100000\n");
  EXPECT_FALSE(backend.overheating());
  tree.write("hwmon/hwmon2/temp1_input", "100000\n");
  EXPECT_TRUE(backend.overheating());
  ASSERT_TRUE(backend.holdFloor(2000));
  backend.fullSpeed();
  EXPECT_EQ(read("hwmon/hwmon0/pwm1"), "255\n");
}

}  // namespace
}  // namespace quillmark
