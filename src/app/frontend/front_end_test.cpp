#include "app/frontend/front_end.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "sampling/testing/monitor_rig.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

using nlohmann::json;

std::optional<FrontEndOptions> parse(std::vector<const char*> args, std::string& error) {
  args.insert(args.begin(), "quillmark");
  return FrontEndOptions::parse(static_cast<int>(args.size()), args.data(), error);
}

TEST(FrontEndOptionsTest, AcceptsTheDocumentedOptionsAndRejectsTheRest) {
  std::string error;
  auto jsonLines = parse({"--json", "--count", "3"}, error);
  ASSERT_TRUE(jsonLines);
  EXPECT_EQ(jsonLines->format, OutputFormat::json);
  EXPECT_EQ(jsonLines->count, 3);
  EXPECT_EQ(parse({}, error)->format, OutputFormat::text);
  EXPECT_EQ(parse({"--status-line"}, error)->format, OutputFormat::text);
  EXPECT_EQ(parse({"--waybar"}, error)->format, OutputFormat::waybar);
  EXPECT_EQ(parse({"--i3bar", "--i3bar"}, error)->format, OutputFormat::i3bar);
  EXPECT_FALSE(parse({"--waybar", "--json"}, error));
  EXPECT_NE(error.find("cannot be combined"), std::string::npos);
  EXPECT_FALSE(parse({"--jsn"}, error));
  EXPECT_NE(error.find("--jsn"), std::string::npos);
  for (const char* bad : {"0", "-2", "3x", "", "99999999999999999999"}) {
    EXPECT_FALSE(parse({"--count", bad}, error)) << bad;
  }
  EXPECT_FALSE(parse({"--count"}, error));
}

// The front end driven by a monitor on virtual time; the machine goes from idle counters to a
// 75 % load (core 1 fully busy, core 0 half) between the first two reads.
class FrontEndTest : public ::testing::Test, protected testing::MonitorRig {
 protected:
  FrontEndTest() {
    counters.memory = MemorySample{1000, 500, 100, 30, 0, 0};
    script();
    processes.table = {{7, "name \"with\" quotes\xff", 1, 4096}};
  }
  // Busy and idle ticks of the machine and of its two cores.
  static CPUReading reading(std::uint64_t busy, std::uint64_t idle, std::uint64_t core0Busy,
                            std::uint64_t core0Idle, std::uint64_t core1Busy) {
    return {CPUTicks{busy, 0, idle, 0},
            {{0, CPUTicks{core0Busy, 0, core0Idle, 0}}, {1, CPUTicks{core1Busy, 0, 0, 0}}}};
  }
  void script() {
    counters.cpu = {reading(0, 0, 0, 0, 0), reading(75, 25, 25, 25, 50)};
    counters.net = {NetCounters{{"en0", 1000, 0}}, NetCounters{{"en0", 3000, 0}}};
  }
  FrontEnd make(OutputFormat format, std::optional<long> count = std::nullopt) {
    FrontEndOptions options;
    options.format = format;
    options.count = count;
    FrontEndSettings settings{[this] { return interval; }, [this] { return showNet; },
                              [] { return TempUnit::celsius; }, [] { return AlarmThresholds{}; }};
    return FrontEnd(
        options, settings, *monitor, loop, l10n,
        [this](std::string line, bool keep) {
          lines.push_back({std::move(line), keep});
        },
        [this] { ++finished; });
  }
  void advance(double seconds) {
    loop.advance(seconds);
    finishMeasurement();
  }

  MemoryDefaultsStore store;
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  std::vector<std::pair<std::string, bool>> lines;
  double interval = 5.0;
  bool showNet = false;
  int finished = 0;
};

// Each format's first line, read the way its consumer reads it, carries the load measured over
// the priming second, not the 0 % of a first tick that had nothing to compare with.
TEST_F(FrontEndTest, TheFirstLineOfEveryFormatReportsTheLoadOfAMeasuredInterval) {
  for (OutputFormat format :
       {OutputFormat::text, OutputFormat::json, OutputFormat::waybar, OutputFormat::i3bar}) {
    SCOPED_TRACE(std::string(optionName(format)));
    lines.clear();
    script();
    monitor = Monitor::create({loop, queue, clock, counters, processes, heavy, consumers});
    FrontEnd frontEnd = make(format);
    frontEnd.start();
    finishMeasurement();
    EXPECT_TRUE(lines.empty()) << "the priming tick printed " << lines.front().first;
    advance(FrontEnd::kPrimingSeconds);
    ASSERT_FALSE(lines.empty());
    const std::string& line = lines.back().first;
    switch (format) {
      case OutputFormat::text:
        EXPECT_EQ(line, "CPU 75% MEM 63%");
        EXPECT_TRUE(monitor->publishingPaused());  // the cheap path
        break;
      case OutputFormat::json: {
        const json snapshot = json::parse(line);
        EXPECT_EQ(snapshot["cpu"]["total"], 75.0);
        EXPECT_EQ(snapshot["network"]["downBps"], 2000.0);
        // Everything was read, as with the panel open, and the process loads are fresh.
        EXPECT_FALSE(monitor->publishingPaused());
        EXPECT_EQ(snapshot["processesScanned"], true);
        EXPECT_EQ(snapshot["processes"][0]["pid"], 7);
        EXPECT_EQ(snapshot["thermal"]["cpuC"], 50.0);
        EXPECT_TRUE(snapshot["gpu"].is_null());
        EXPECT_EQ(snapshot["assertions"]["42"][0], "PreventUserIdleSystemSleep");
        break;
      }
      case OutputFormat::waybar:
        EXPECT_EQ(json::parse(line)["percentage"], 75);
        EXPECT_NE(json::parse(line)["tooltip"].get<std::string>().find("busiest core 100%"),
                  std::string::npos);
        break;
      case OutputFormat::i3bar:
        // The header and the opening bracket come first and, like the first array, are never
        // dropped for a newer line: without them the rest does not parse.
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(json::parse(lines[0].first), (json{{"version", 1}}));
        EXPECT_EQ(lines[1].first, "[");
        EXPECT_TRUE(lines[0].second && lines[1].second && lines[2].second);
        EXPECT_EQ(json::parse(line)[0]["full_text"], "CPU 75%");
        EXPECT_EQ(json::parse(line)[2]["full_text"], "CPU 50°C");
        break;
    }
    EXPECT_EQ(lines.size(), format == OutputFormat::i3bar ? 3u : 1u);
    frontEnd.stop();
  }
}

TEST_F(FrontEndTest, LinesFollowAtTheStoredIntervalAndStopAtTheCount) {
  FrontEnd frontEnd = make(OutputFormat::text, 3);
  frontEnd.start();
  EXPECT_EQ(monitor->refreshInterval(), 5.0);
  finishMeasurement();
  advance(FrontEnd::kPrimingSeconds);
  showNet = true;  // honoured from the next line on
  advance(4.0);
  advance(5.0);
  advance(5.0);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].first, "CPU 75% MEM 63%");
  EXPECT_TRUE(lines[1].first.ends_with(" MEM 63%  \u21930B \u21910B")) << lines[1].first;
  EXPECT_FALSE(lines[1].second);  // a newer status line may replace it
  EXPECT_EQ(finished, 1);
  frontEnd.stop();
  EXPECT_FALSE(monitor->isRunning());
}

}  // namespace
}  // namespace quillmark
