#include "processes/pin_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/virtual_time.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;

TEST(PinStoreTest, KeepsThreeNamesAndForgetsTracksOnUnpin) {
  MemoryDefaultsStore defaults;
  defaults.set(PinStore::kDefaultsKey, std::vector<std::string>{"a", "a", "b"});
  VirtualClock clock;
  PinStore pins(defaults, clock);
  EXPECT_THAT(pins.names(), ElementsAre("a", "b"));
  pins.toggle("c");
  pins.toggle("d");  // full: nothing changes
  EXPECT_THAT(pins.names(), ElementsAre("a", "b", "c"));
  EXPECT_FALSE(pins.isPinned("A"));

  pins.record({{1, "a", 7, 0}});
  ASSERT_EQ(pins.trend("a").values.size(), 1u);
  pins.toggle("a");
  pins.toggle("d");  // a place came free
  EXPECT_THAT(defaults.getStringArray(PinStore::kDefaultsKey).value(), ElementsAre("b", "c", "d"));
  pins.toggle("a");
  pins.toggle("d");
  pins.toggle("a");
  EXPECT_TRUE(pins.trend("a").values.empty()) << "pinning again starts a new history";
}

TEST(PinStoreTest, RecordsTheBusiestProcessOfEachNameEveryThirtySeconds) {
  MemoryDefaultsStore defaults;
  VirtualClock clock;
  PinStore pins(defaults, clock);
  pins.toggle("Web");
  pins.toggle("idle");
  const std::vector<ProcessSample> rows = {{1, "Web", 3, 0}, {2, "Web", 40, 0}, {3, "web", 90, 0}};
  pins.record(rows);
  clock.advance(29.9);
  pins.record(rows);  // too soon
  EXPECT_THAT(pins.trend("Web").values, ElementsAre(40));
  EXPECT_THAT(pins.trend("idle").values, ElementsAre(0));

  for (int i = 0; i < 121; ++i) {
    clock.advance(30);
    pins.record({{1, "Web", static_cast<double>(i), 0}});
  }
  const auto track = pins.trend("Web").values;
  ASSERT_EQ(track.size(), 120u);
  EXPECT_EQ(track.front(), 1);
  EXPECT_EQ(track.back(), 120);
}

}  // namespace
}  // namespace quillmark
