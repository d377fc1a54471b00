// Every text of every face stays inside its box in all nine languages, at the widest values the
// panel can show: 100 %, 999.9 GB, long process names, open dialogs, every optional section.
#include <gtest/gtest.h>

#include "settings/l10n.h"
#include "views/first_run_tip_content.h"
#include "views/label.h"
#include "views/testing/panel_fixture.h"

namespace quillmark {
namespace {

using testing::PanelFixture;

PanelModel widestModel() {
  PanelModel m = testing::sampleModel();
  const std::uint64_t big = 1073636966400ull;  // 999.9 GB
  m.cpu = {100, std::vector<double>(24, 100)};
  m.memory = {big, big / 4, big / 4, big / 4, big / 8, big / 8};
  m.network = {999.9e6, 999.9e6};
  m.diskFree = big;
  m.diskTotal = big;
  m.gpu = GPUSample{100, 100, 100, big, 76};
  m.thermal = {105, 105, 105, 105};
  m.fans = {6000, 6000};
  m.battery = {100, true, false, true, 9999, 100, 99.9};
  m.processes.push_back({105, "com.apple.WebKit.WebContent.Extremely.Long.Helper.Name", 100, big});
  m.energyRows = m.processes;
  m.paused = {{105, 105, "com.apple.WebKit.WebContent.Extremely.Long.Helper.Name"}};
  m.pins = {"Safari"};
  m.pinTracks["Safari"] = {10, 100, 50};
  m.insights = {{PanelModel::Insight::Kind::leak, 100, "Safari",
                 L("insight.leak", "com.apple.WebKit.WebContent.Extremely.Long.Helper.Name", "999.9 GB"),
                 big}};
  m.killWhitelist = {"com.apple.WebKit.WebContent.Extremely.Long.Helper.Name"};
  m.comfortEnabled = true;
  m.comfortStatus = PanelModel::ComfortStatus::needsApproval;
  m.fanRPM = 6000;
  m.uptimeSeconds = 99 * 86400.0;
  m.selfCpuPercent = 100;
  m.selfMemoryBytes = big;
  m.cpuAlarmThreshold = 100;
  m.tempAlarmThreshold = 105;
  m.tempUnit = TempUnit::fahrenheit;
  return m;
}

// Labels that do not fit, and views that stick out of their parent, as readable lines.
void collectOverflows(const View& v, const std::string& path, std::vector<std::string>& out) {
  for (const auto& child : v.children()) {
    if (!child->visible) continue;
    const std::string where = path + "/" + (child->id.empty() ? "_" : child->id);
    if (auto* label = dynamic_cast<const Label*>(child.get())) {
      if (!label->fits()) {
        out.push_back(where + " \"" + label->text + "\" needs " + std::to_string(label->drawnSize().width) +
                      "x" + std::to_string(label->drawnSize().height) + " in " +
                      std::to_string(label->frame.width) + "x" + std::to_string(label->frame.height));
      }
    }
    // A scroll view's content is taller by design; everything else stays inside its parent.
    const bool scrolled = v.clipsChildren && v.id == "scroll";
    if (!scrolled && !Rect{0, 0, v.frame.width, v.frame.height}.encloses(child->frame)) {
      out.push_back(where + " sticks out of its parent");
    }
    collectOverflows(*child, where, out);
  }
}

class PanelTextFitTest : public ::testing::TestWithParam<AppLanguage> {};

TEST_P(PanelTextFitTest, NothingIsClippedAtTheWidestValues) {
  L10n::shared().useLanguageWithoutStoring(GetParam());
  for (const PanelSkin skin : kAllPanelSkins) {
    PanelFixture f;
    PanelModel model = widestModel();
    model.skin = skin;
    f.root.setModel(model);
    f.root.state().expandedPid = 100;
    f.root.state().expand.value = f.root.state().expand.target = 1;
    f.root.state().showSearch = true;
    f.root.state().searchText = "a";
    f.root.state().sortMode = PanelModel::SortMode::energy;
    f.root.setModel(model);
    std::vector<std::string> overflows;
    collectOverflows(f.root.tree(), std::string(rawValue(skin)), overflows);
    f.root.state().pendingKill = PanelState::PendingProcess{105, model.processes.back().name};
    f.root.setModel(model);
    collectOverflows(*f.find("dialog"), "killDialog", overflows);
    for (const auto& line : overflows) ADD_FAILURE() << rawValue(GetParam()) << ": " << line;
  }
  L10n::shared().useLanguageWithoutStoring(AppLanguage::en);
}

TEST_P(PanelTextFitTest, FirstRunTipFits) {
  L10n::shared().useLanguageWithoutStoring(GetParam());
  PanelAnchor anchor;
  FirstRunTipContent tip(anchor, PanelSkin::glass, [] {});
  auto canvas = CairoCanvas::offscreen({tip.width(), tip.height()}, 1);
  std::vector<std::string> overflows;
  collectOverflows(tip.tree(*canvas), "tip", overflows);
  for (const auto& line : overflows) ADD_FAILURE() << rawValue(GetParam()) << ": " << line;
  L10n::shared().useLanguageWithoutStoring(AppLanguage::en);
}

INSTANTIATE_TEST_SUITE_P(AllLanguages, PanelTextFitTest,
                         ::testing::Values(AppLanguage::en, AppLanguage::zhHans, AppLanguage::ja,
                                           AppLanguage::de, AppLanguage::fr, AppLanguage::zhHant,
                                           AppLanguage::es, AppLanguage::ko, AppLanguage::th),
                         [](const auto& param) {
                           std::string name(rawValue(param.param));
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
}  // namespace quillmark
