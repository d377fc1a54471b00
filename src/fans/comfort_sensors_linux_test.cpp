#include "fans/comfort_sensors_linux.h"

#include <gtest/gtest.h>

#include "sampling/linux/testing/temp_tree.h"

namespace quillmark {
namespace {

TEST(LinuxComfortSensorsTest, SurfaceIsTheNamedSensorAndTopSpeedTheFirstDrivableChannels) {
  testing::TempTree tree;
  tree.write("sys/class/hwmon/hwmon0/name", "thinkpad\n");
  tree.write("sys/class/hwmon/hwmon0/temp3_input", "41300\n");
  tree.write("sys/class/hwmon/hwmon0/temp3_label", "palm\n");
  tree.write("sys/class/hwmon/hwmon0/pwm1", "80\n");  // no enable file: not driven, not "first"
  tree.write("sys/class/hwmon/hwmon0/fan1_max", "9000\n");
  tree.write("sys/class/hwmon/hwmon1/name", "nct6775\n");
  tree.write("sys/class/hwmon/hwmon1/pwm2", "80\n");
  tree.write("sys/class/hwmon/hwmon1/pwm2_enable", "2\n");
  tree.write("sys/class/hwmon/hwmon1/fan2_max", "4800\n");
  std::string chosen = "thinkpad/temp3";
  LinuxComfortSensors sensors([&] { return chosen; }, tree.root());
  EXPECT_EQ(sensors.surfaceC(), 41.3);
  EXPECT_EQ(sensors.fanMaxRPM(), 4800);
  chosen = "thinkpad/palm";  // by label works too
  EXPECT_EQ(sensors.surfaceC(), 41.3);
  tree.write("sys/class/hwmon/hwmon0/temp3_input", "-ENODATA\n");
  EXPECT_EQ(sensors.surfaceC(), std::nullopt);
  chosen = "";  // none chosen: comfort cooling is unavailable
  EXPECT_EQ(sensors.surfaceC(), std::nullopt);
  tree.write("sys/class/hwmon/hwmon1/fan2_max", "0\n");
  EXPECT_EQ(sensors.fanMaxRPM(), std::nullopt);
}

}  // namespace
}  // namespace quillmark
