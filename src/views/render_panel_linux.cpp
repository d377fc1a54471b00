#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/file_util.h"
#include "base/virtual_time.h"
#include "menubar/first_run_tip_window.h"
#include "settings/l10n.h"
#include "views/canvas_cairo.h"
#include "views/first_run_tip_content.h"
#include "views/panel_model_json.h"
#include "views/panel_root.h"
#include "views/render_panel.h"

namespace quillmark {
namespace {

constexpr const char* kUsage =
    "usage: quillmark --render-panel FILE.png [--skin glass|vitals|settings|tip] [--scale 1|2]\n"
    "                 [--language CODE] [--snapshot FILE]\n"
    "\n"
    "Draws the panel, or with --skin tip the first-run card, without a window. FILE is lines of\n"
    "`quillmark --json`: the last gives the figures, the earlier ones the charts. CODE is en,\n"
    "zh-Hans, zh-Hant, ja, ko, de, fr, es or th.\n";

struct RenderOptions {
  std::string output;
  std::string skin = "glass";
  double scale = 2;
  std::optional<AppLanguage> language;
  std::string snapshot;
};

std::optional<RenderOptions> parse(int argc, const char* const* argv, std::string& error) {
  RenderOptions o;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    const bool hasValue = i + 1 < argc;
    const std::string value = hasValue ? argv[i + 1] : "";
    if (arg == "--render-panel" || arg == "--skin" || arg == "--scale" || arg == "--language" ||
        arg == "--snapshot") {
      if (!hasValue) {
        error = std::string(arg) + " needs a value";
        return std::nullopt;
      }
      ++i;
    } else {
      error = "unknown option " + std::string(arg);
      return std::nullopt;
    }
    if (arg == "--render-panel") o.output = value;
    if (arg == "--snapshot") o.snapshot = value;
    if (arg == "--skin") {
      if (value != "glass" && value != "vitals" && value != "settings" && value != "tip") {
        error = "--skin takes glass, vitals, settings or tip";
        return std::nullopt;
      }
      o.skin = value;
    }
    if (arg == "--scale") {
      if (value != "1" && value != "2") {
        error = "--scale takes 1 or 2";
        return std::nullopt;
      }
      o.scale = value == "1" ? 1 : 2;
    }
    if (arg == "--language") {
      o.language = appLanguageFromRaw(value);
      if (!o.language) {
        error = "unknown language " + value;
        return std::nullopt;
      }
    }
  }
  if (o.output.empty()) {
    error = "--render-panel needs a file name";
    return std::nullopt;
  }
  return o;
}

// A rendering acts on nothing: the buttons are drawn, never pressed.
class InertActions final : public PanelActions {
 public:
  bool canPause(std::int32_t pid, const std::string&) const override { return pid > 1; }
  bool isKillable(std::int32_t pid, const std::string&) const override { return pid > 1; }
  void pause(std::int32_t, const std::string&) override {}
  void resume(std::int32_t) override {}
  void terminate(std::int32_t, const std::string&) override {}
  void addPreauthorized(const std::string&) override {}
  void removePreauthorized(const std::string&) override {}
  void togglePin(const std::string&) override {}
  void reveal(const std::string&) override {}
  void setHistoryWindow(PanelModel::HistoryWindow) override {}
  void expand(std::int32_t) override {}
  void setRefreshInterval(double) override {}
  void setLanguage(AppLanguage) override {}
  void setLaunchAtLogin(bool) override {}
  void setSkin(PanelSkin) override {}
  void setMenuBarMode(MenuBarMode) override {}
  void setShowNetSpeed(bool) override {}
  void setModuleVisible(PanelModule, bool) override {}
  void setTempUnit(TempUnit) override {}
  void setAlertsEnabled(bool) override {}
  void setCpuAlarmThreshold(double) override {}
  void setMemAlarmThreshold(double) override {}
  void setTempAlarmThreshold(double) override {}
  void setComfortEnabled(bool) override {}
  void setComfortTarget(double) override {}
  void retryAfterApproval() override {}
};

}  // namespace

bool wantsRenderPanel(int argc, const char* const* argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--render-panel") return true;
  }
  return false;
}

int renderPanelMain(int argc, const char* const* argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--help") {
      std::fputs(kUsage, stdout);
      return 0;
    }
  }
  std::string error;
  const auto options = parse(argc, argv, error);
  if (!options) {
    std::fprintf(stderr, "quillmark: %s\n%s", error.c_str(), kUsage);
    return 2;
  }
  PanelModel model;
  if (!options->snapshot.empty()) {
    const auto text = readWholeFile(options->snapshot);
    if (!text) {
      std::fprintf(stderr, "quillmark: cannot read %s\n", options->snapshot.c_str());
      return 1;
    }
    auto parsed = panelModelFromJsonLines(*text, error);
    if (!parsed) {
      std::fprintf(stderr, "quillmark: %s: %s\n", options->snapshot.c_str(), error.c_str());
      return 1;
    }
    model = std::move(*parsed);
  }
  if (options->language) {
    L10n::shared().useLanguageWithoutStoring(*options->language);
    model.language = *options->language;
  }
  model.skin = options->skin == "vitals" ? PanelSkin::vitals : PanelSkin::glass;

  std::unique_ptr<CairoCanvas> canvas;
  if (options->skin == "tip") {
    // The card centred under its item, as on a screen with room on both sides.
    PanelAnchor anchor;
    anchor.arrowX.set(FirstRunTipWindow::kWidth / 2);
    FirstRunTipContent tip(anchor, model.skin, [] {});
    canvas = CairoCanvas::offscreen({tip.width(), tip.height()}, options->scale);
    tip.paint(*canvas);
  } else {
    InertActions actions;
    canvas = CairoCanvas::offscreen({PanelRoot::kWidth, PanelRoot::kBodyHeight + PanelRoot::kArrowHeight},
                                    options->scale);
    // Time stands still but for the turn to the settings face, which is let finish.
    VirtualClock clock;
    PanelAnchor anchor;
    PanelFlipState flip(clock);
    PanelRoot root(actions, *canvas, {anchor, flip, clock});
    root.setModel(std::move(model));
    if (options->skin == "settings") {
      root.showSettings(true);
      clock.advance(5);
    }
    root.paint(*canvas);
  }
  // Written beside the target and renamed, so a reader never sees half a picture.
  const std::string temporary = options->output + ".part";
  if (!canvas->writePng(temporary, error) || std::rename(temporary.c_str(), options->output.c_str()) != 0) {
    std::remove(temporary.c_str());
    std::fprintf(stderr, "quillmark: cannot write %s: %s\n", options->output.c_str(),
                 error.empty() ? "rename failed" : error.c_str());
    return 1;
  }
  return 0;
}

}  // namespace quillmark
