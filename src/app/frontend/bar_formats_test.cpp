#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "app/frontend/i3bar_output.h"
#include "app/frontend/waybar_output.h"
#include "settings/l10n.h"

namespace quillmark {
namespace {

using nlohmann::json;

// The waybar and i3bar formats on a hand-made snapshot, with the shipped string tables.
class BarFormatsTest : public ::testing::Test {
 protected:
  BarFormatsTest() {
    snapshot.cpu = {40.0, {10.0, 70.0}};
    snapshot.memory = {1000, 500, 100, 0, 200, 200};  // 60 % used
    snapshot.network = {14'200, 2'345'678};
    snapshot.thermal.cpuC = 70.0;
    snapshot.diskFree = 5ull << 30;
    snapshot.diskTotal = 20ull << 30;
    snapshot.processes = {
        {11, "idle", 0.5, 1}, {12, "<b>&evil</b>\nline", 90, 1}, {13, "make", 30, 1}, {14, "cc1plus", 60, 1}};
  }
  BarContext context(AppLanguage language = AppLanguage::en) {
    l10n.language.set(language);
    return BarContext{l10n, true, TempUnit::celsius, thresholds};
  }
  // The status text is the front end's to choose; these tests give a fixed one.
  std::string rawWaybar(AppLanguage language = AppLanguage::en) {
    return waybarLine(snapshot, context(language), "text");
  }
  json waybar(AppLanguage language = AppLanguage::en) { return json::parse(rawWaybar(language)); }

  MemoryDefaultsStore store;
  L10n l10n{store, QM_RESOURCES_DIR, {"en"}};
  Monitor::Snapshot snapshot;
  AlarmThresholds thresholds{50, 60, 80};
};

TEST_F(BarFormatsTest, WaybarClassesNameExactlyTheThresholdsReached) {
  EXPECT_EQ(waybar()["class"], json({"mem-high"}));  // 60 % is at the memory threshold
  thresholds.memoryPercent = 60.1;
  EXPECT_EQ(waybar()["class"], json::array());
  snapshot.cpu.total = 50.0;
  snapshot.thermal.cpuC = 80.0;
  EXPECT_EQ(waybar()["class"], json({"cpu-high", "hot"}));
  snapshot.cpu.total = 49.9;
  snapshot.thermal.cpuC = 79.9;
  EXPECT_EQ(waybar()["class"], json::array());
  snapshot.thermal.cpuC.reset();  // no sensor: never hot
  thresholds.cpuTemperatureC = 0;
  EXPECT_EQ(waybar()["class"], json::array());
  snapshot.cpu.total = 49.6;
  EXPECT_EQ(waybar()["percentage"], 50);
  // Counters this tick could not read are no value, never 0 % and never over a threshold.
  snapshot.cpu.total = 99;
  snapshot.cpuRead = false;
  snapshot.memoryRead = false;
  EXPECT_EQ(waybar()["class"], json::array());
  EXPECT_TRUE(waybar()["percentage"].is_null());
  EXPECT_EQ(waybar()["tooltip"].get<std::string>().find("CPU: "), std::string::npos);
  EXPECT_EQ(json::parse(I3barOutput::blocks(snapshot, context()))[0]["name"], "network");
}

TEST_F(BarFormatsTest, WaybarTooltipSummarisesInLinesWithNamesMadeHarmless) {
  const json line = waybar();
  EXPECT_EQ(json::parse(waybarLine(snapshot, context(), "CPU <40%> & MEM"))["text"],
            "CPU &lt;40%&gt; &amp; MEM");
  const std::string tooltip = line["tooltip"];
  EXPECT_NE(tooltip.find("CPU: 40% · busiest core 70%\n"), std::string::npos) << tooltip;
  EXPECT_NE(tooltip.find("Disk: 5.0 GB free of 20.0 GB"), std::string::npos);
  EXPECT_NE(tooltip.find("CPU temperature: 70 °C"), std::string::npos);
  // The three busiest, busiest first; markup and the newline in a name cannot reach the bar.
  const auto first = tooltip.find("&lt;b&gt;&amp;evil&lt;/b&gt; line 90%");
  const auto second = tooltip.find("cc1plus 60%");
  const auto third = tooltip.find("make 30%");
  EXPECT_TRUE(first != std::string::npos && first < second && second < third && third != std::string::npos)
      << tooltip;
  EXPECT_EQ(tooltip.find("idle"), std::string::npos);
  EXPECT_EQ(tooltip.find('<'), std::string::npos);
  EXPECT_EQ(std::count(tooltip.begin(), tooltip.end(), '\n'), 9);
  // One object per line: the tooltip's breaks travel escaped inside the JSON string.
  EXPECT_EQ(rawWaybar().find('\n'), std::string::npos);
}

TEST_F(BarFormatsTest, LongAndCjkLanguagesStayValidSingleLineJson) {
  snapshot.processes.push_back({15, "\xff\xfe broken", 95, 1});  // not UTF-8
  for (AppLanguage language : {AppLanguage::de, AppLanguage::ja}) {
    const std::string waybarText = rawWaybar(language);
    const std::string i3barText = I3barOutput::blocks(snapshot, context(language));
    for (const std::string& text : {waybarText, i3barText}) {
      EXPECT_TRUE(json::accept(text)) << text;
      EXPECT_EQ(text.find('\n'), std::string::npos);
    }
    const std::string tooltip = json::parse(waybarText)["tooltip"];
    EXPECT_NE(tooltip.find("\uFFFD"), std::string::npos);  // the broken name, replaced
    const std::string memory = json::parse(i3barText)[1]["full_text"];
    EXPECT_EQ(memory, language == AppLanguage::de ? "RAM 60 %" : "メモリ 60%");
  }
  EXPECT_NE(json::parse(rawWaybar(AppLanguage::ja))["tooltip"].get<std::string>().find("メモリ"),
            std::string::npos);
}

TEST_F(BarFormatsTest, I3barBlocksTurnUrgentAndRedOverTheirThreshold) {
  const json blocks = json::parse(I3barOutput::blocks(snapshot, context()));
  ASSERT_EQ(blocks.size(), 4u);
  EXPECT_EQ(blocks[0]["full_text"], "CPU 40%");
  EXPECT_FALSE(blocks[0].contains("urgent"));
  EXPECT_EQ(blocks[1]["name"], "memory");
  EXPECT_EQ(blocks[1]["urgent"], true);
  EXPECT_EQ(blocks[1]["color"], I3barOutput::kOverColor);
  EXPECT_EQ(blocks[2]["full_text"], "CPU 70°C");
  EXPECT_EQ(blocks[3]["full_text"], "\u219314K \u21912.3M");

  BarContext fahrenheit = context();
  fahrenheit.tempUnit = TempUnit::fahrenheit;
  fahrenheit.showNetSpeed = false;
  snapshot.thermal.cpuC = 85.0;
  const json hot = json::parse(I3barOutput::blocks(snapshot, fahrenheit));
  ASSERT_EQ(hot.size(), 3u);
  EXPECT_EQ(hot[2]["full_text"], "CPU 185°F");
  EXPECT_EQ(hot[2]["urgent"], true);
}

}  // namespace
}  // namespace quillmark
