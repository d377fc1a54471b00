#include "app/frontend/front_end.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>

#include "app/frontend/status_text.h"
#include "base/virtual_time.h"
#include "sampling/testing/fake_readers.h"

namespace quillmark {
namespace {

std::optional<FrontEndOptions> parse(std::vector<const char*> args, std::string& error) {
  args.insert(args.begin(), "quillmark");
  return FrontEndOptions::parse(static_cast<int>(args.size()), args.data(), error);
}

TEST(FrontEndOptionsTest, AcceptsTheDocumentedOptionsAndRejectsTheRest) {
  std::string error;
  auto json = parse({"--json", "--count", "3"}, error);
  ASSERT_TRUE(json);
  EXPECT_TRUE(json->json);
  EXPECT_EQ(json->count, 3);
  EXPECT_FALSE(parse({"--jsn"}, error));
  EXPECT_NE(error.find("--jsn"), std::string::npos);
  for (const char* bad : {"0", "-2", "3x", "", "99999999999999999999"}) {
    EXPECT_FALSE(parse({"--count", bad}, error)) << bad;
  }
  EXPECT_FALSE(parse({"--count"}, error));
}

TEST(StatusTextTest, PercentagesThenOptionalCompactRates) {
  const CPUSample cpu{12.4, {}};
  const MemorySample memory{1000, 500, 100, 30, 0, 0};
  const NetSample net{14'200, 2'345'678};
  EXPECT_EQ(statusText(cpu, memory, net, false), "CPU 12% MEM 63%");
  EXPECT_EQ(statusText(cpu, memory, net, true), "CPU 12% MEM 63%  \u219314K \u21912.3M");
  EXPECT_EQ(statusText({}, {}, {999, 0}, true), "CPU 0% MEM 0%  \u2193999B \u21910B");
}

// The front end driven by a monitor on virtual time, writing to a memory stream.
class FrontEndTest : public ::testing::Test {
 protected:
  FrontEndTest() {
    counters.memory = MemorySample{1000, 500, 100, 30, 0, 0};
    processes.table = {{7, "name \"with\" quotes\xff", 1, 4096}};
    monitor = Monitor::create({loop, queue, clock, counters, processes, heavy, consumers});
    out = open_memstream(&buffer, &size);
  }
  ~FrontEndTest() override {
    if (out) std::fclose(out);
    std::free(buffer);
  }
  void tick() {
    loop.advance(interval);
    queue.runAll();
    loop.runUntilIdle();
  }
  std::vector<std::string> lines() {
    std::fflush(out);
    std::vector<std::string> result;
    std::istringstream in(std::string(buffer, size));
    for (std::string line; std::getline(in, line);) result.push_back(line);
    return result;
  }
  FrontEndSettings settings() {
    return {[this] { return interval; }, [this] { return showNet; }};
  }

  VirtualClock clock;
  VirtualMainLoop loop{clock};
  ManualSerialQueue queue;
  testing::FakeSystemCounters counters;
  testing::FakeProcessReader processes;
  testing::FakeHeavyReaders heavy;
  testing::RecordingConsumers consumers;
  std::shared_ptr<Monitor> monitor;
  char* buffer = nullptr;
  std::size_t size = 0;
  std::FILE* out = nullptr;
  double interval = 5.0;
  bool showNet = false;
  int finished = 0;
};

TEST_F(FrontEndTest, TextModePrintsOneLinePerTickAtTheStoredIntervalAndStopsAtCount) {
  FrontEndOptions options;
  options.count = 3;
  FrontEnd frontEnd(options, settings(), *monitor, out, [this] { ++finished; });
  frontEnd.start();
  EXPECT_EQ(monitor->refreshInterval(), 5.0);
  EXPECT_TRUE(monitor->publishingPaused());  // the cheap path, like a closed panel
  queue.runAll();
  loop.runUntilIdle();
  showNet = true;  // honoured from the next tick on
  tick();
  tick();
  tick();
  const auto written = lines();
  ASSERT_EQ(written.size(), 3u);
  EXPECT_EQ(written[0], "CPU 0% MEM 63%");
  EXPECT_EQ(written[1], "CPU 0% MEM 63%  \u21930B \u21910B");
  EXPECT_EQ(finished, 1);
  frontEnd.stop();
  EXPECT_FALSE(monitor->isRunning());
}

TEST_F(FrontEndTest, JsonModePublishesEverythingAndPrintsEveryFieldPerLine) {
  FrontEndOptions options;
  options.json = true;
  FrontEnd frontEnd(options, settings(), *monitor, out, [this] { ++finished; });
  frontEnd.start();
  EXPECT_FALSE(monitor->publishingPaused());
  queue.runAll();
  loop.runUntilIdle();
  const auto written = lines();
  ASSERT_EQ(written.size(), 1u);
  const auto line = nlohmann::json::parse(written[0]);
  for (const char* field :
       {"cpu", "memory", "network", "processes", "diskFree", "diskTotal", "fans", "thermal", "battery", "gpu",
        "gpuCollected", "tempFresh", "processesScanned", "assertions", "energyRows", "livePids"}) {
    EXPECT_TRUE(line.contains(field)) << field;
  }
  EXPECT_TRUE(line["gpu"].is_null());
  EXPECT_TRUE(line["thermal"]["gpuC"].is_null());
  EXPECT_EQ(line["thermal"]["cpuC"], 50.0);
  EXPECT_EQ(line["processesScanned"], true);
  EXPECT_EQ(line["processes"][0]["pid"], 7);
  EXPECT_EQ(line["livePids"], nlohmann::json::array({7}));
  EXPECT_EQ(line["memory"]["used"], 630);
  EXPECT_EQ(line["assertions"]["42"][0], "PreventUserIdleSystemSleep");
}

TEST_F(FrontEndTest, AFailedWriteEndsTheRunInsteadOfSpinning) {
  std::FILE* full = std::fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  FrontEnd frontEnd(FrontEndOptions{}, settings(), *monitor, full, [this] { ++finished; });
  frontEnd.start();
  queue.runAll();
  loop.runUntilIdle();
  tick();
  EXPECT_TRUE(frontEnd.outputFailed());
  EXPECT_EQ(finished, 1);
  frontEnd.stop();
  std::fclose(full);
}

}  // namespace
}  // namespace quillmark
