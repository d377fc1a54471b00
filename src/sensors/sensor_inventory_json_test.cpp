#include "sensors/sensor_inventory_json.h"

#include <gtest/gtest.h>

namespace quillmark {
namespace {

TEST(SensorInventoryJson, ListsEverySensorAndGPUWithAbsentValuesAsNull) {
  SensorInventory inventory;
  inventory.setSensors(
      {{"thinkpad/temp3", "thinkpad", "temp3", 36.5}, {"nvme/temp1", "nvme", "Composite", {}}});
  GPUListing asleep;
  asleep.name = "card1";
  asleep.driver = "nvidia";
  asleep.suspended = true;
  inventory.setGPUs({{"card0", "amdgpu", 37.0, 512u, 2048u, 52.0, {}, false}, asleep});
  nlohmann::json object = nlohmann::json::object();
  appendSensorLists(object, inventory);
  EXPECT_EQ(object["sensors"][0]["id"], "thinkpad/temp3");
  EXPECT_EQ(object["sensors"][0]["valueC"], 36.5);
  EXPECT_TRUE(object["sensors"][1]["valueC"].is_null());
  EXPECT_EQ(object["gpus"][0]["busyPercent"], 37.0);
  EXPECT_TRUE(object["gpus"][0]["coreCount"].is_null());
  EXPECT_TRUE(object["gpus"][1]["busyPercent"].is_null());
  EXPECT_EQ(object["gpus"][1]["suspended"], true);
  EXPECT_EQ(object["energyAvailable"], false);

  nlohmann::json none = nlohmann::json::object();
  appendSensorLists(none);  // nothing installed: empty lists, not missing keys
  EXPECT_EQ(none["sensors"], nlohmann::json::array());
  EXPECT_EQ(none["gpus"], nlohmann::json::array());
}

}  // namespace
}  // namespace quillmark
