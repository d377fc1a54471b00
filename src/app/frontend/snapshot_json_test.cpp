#include "app/frontend/snapshot_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace quillmark {
namespace {

TEST(SnapshotJson, FiguresThatWereNotReadAreNullNotZero) {
  Monitor::Snapshot snapshot;
  snapshot.cpu.total = 12.5;
  snapshot.memory = MemorySample{1000, 300, 100, 50, 200, 350};
  auto line = nlohmann::json::parse(snapshotJson(snapshot, 0));
  EXPECT_EQ(line["cpu"]["total"], 12.5);
  EXPECT_EQ(line["memory"]["total"], 1000);

  snapshot.cpuRead = false;
  snapshot.memoryRead = false;
  line = nlohmann::json::parse(snapshotJson(snapshot, 0));
  EXPECT_TRUE(line["cpu"].is_null());
  EXPECT_TRUE(line["memory"].is_null());
  EXPECT_TRUE(line["network"].is_object());
}

}  // namespace
}  // namespace quillmark
