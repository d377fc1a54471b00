#include "sampling/history_store.h"

#include <gtest/gtest.h>

#include "base/virtual_time.h"

namespace quillmark {
namespace {

class HistoryStoreTest : public ::testing::Test {
 protected:
  VirtualClock clock;
  HistoryStore store{clock};
};

TEST_F(HistoryStoreTest, RecordsAtMostOnePointPer30SecondsAndTemperatureOnlyWhenPresent) {
  EXPECT_TRUE(store.wantsTempSample());
  store.record(10, 50, std::nullopt);
  EXPECT_FALSE(store.wantsTempSample());
  clock.advance(29.9);
  store.record(20, 60, 45.0);
  EXPECT_EQ(store.cpu().size(), 1u);
  clock.advance(0.1);
  EXPECT_TRUE(store.wantsTempSample());
  store.record(30, 70, 46.0);
  EXPECT_EQ(store.cpu().size(), 2u);
  EXPECT_EQ(store.mem().back().value, 70);
  ASSERT_EQ(store.temp().size(), 1u);
  EXPECT_EQ(store.temp()[0], (HistoryPoint{clock.absoluteNow(), 46.0}));
}

TEST_F(HistoryStoreTest, SlidesAfter24HoursAtExactly2881Points) {
  for (int i = 0; i <= 2882; ++i) {  // 24 h 30 s and a little more
    store.record(i, i, 40.0);
    clock.advance(30);
  }
  ASSERT_EQ(store.cpu().size(), HistoryStore::kCapacity);
  EXPECT_EQ(store.temp().size(), HistoryStore::kCapacity);
  EXPECT_EQ(store.cpu().front().value, 2);  // the two oldest slid out
  EXPECT_EQ(store.cpu().back().value, 2882);
}

TEST_F(HistoryStoreTest, SlotsKeepTheMaximumLeaveGapsAndClampTheFuture) {
  const double now = clock.absoluteNow();
  auto slots = store.slots({{now - 10, 42}}, HistoryWindow::m30);
  ASSERT_EQ(slots.size(), 60u);
  for (std::size_t i = 0; i < 59; ++i) EXPECT_FALSE(slots[i]) << i;
  EXPECT_EQ(slots[59], 42);

  // h6: 3-minute slots. Two points in one slot keep the larger; a point older than the window
  // and one stamped in the future (the clock was set back) are handled.
  slots =
      store.slots({{now - 21600 - 1, 99}, {now - 21600 + 10, 40}, {now - 21600 + 100, 70}, {now + 500, 5}},
                  HistoryWindow::h6);
  ASSERT_EQ(slots.size(), 120u);
  EXPECT_EQ(slots[0], 70);
  EXPECT_FALSE(slots[1]);
  EXPECT_EQ(slots[119], 5);
}

TEST(HistoryWindowTest, TableMatchesRawValuesSpansAndSlotCounts) {
  EXPECT_EQ(kAllHistoryWindows.front(), HistoryWindow::live);
  for (HistoryWindow w : kAllHistoryWindows) {
    EXPECT_EQ(historyWindowFromRaw(rawValue(w)), w);
    EXPECT_EQ(displayNameKey(w), "history.window." + std::string(rawValue(w)));
    EXPECT_EQ(slotCount(w), w == HistoryWindow::m30 ? 60u : 120u);
  }
  EXPECT_EQ(seconds(HistoryWindow::h24), 86400);
  EXPECT_EQ(seconds(HistoryWindow::live), 3600);
  EXPECT_FALSE(historyWindowFromRaw("h2"));
}

}  // namespace
}  // namespace quillmark
