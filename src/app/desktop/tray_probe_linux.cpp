// The desktop program's tray path without its windows, for tray_test.py: MenuBarController driving
// the real TrayStatusItemHost on the session bus, with services held in memory and a monitor fed
// fixed samples. What reaches the window side (the panel, the tip, a pop-up menu, placement,
// quitting) is written to stdout, one line each. With QM_TRAY_PROBE_TICK=<seconds> it starts in text
// mode and changes the figures that often, as sampling would (bench/tray_soak.sh measures that).
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/desktop/tray_status_item_host_linux.h"
#include "base/poll_main_loop.h"
#include "base/virtual_time.h"
#include "menubar/menu_bar_controller.h"
#include "sampling/testing/fake_readers.h"
#include "settings/testing/fakes.h"

namespace quillmark {
namespace {

const char* nameOf(MenuAction action) {
  switch (action) {
    case MenuAction::none:
      return "none";
    case MenuAction::setMenuBarStyle:
      return "setMenuBarStyle";
    case MenuAction::toggleNetSpeed:
      return "toggleNetSpeed";
    case MenuAction::setSkin:
      return "setSkin";
    case MenuAction::setInterval:
      return "setInterval";
    case MenuAction::openSettings:
      return "openSettings";
    case MenuAction::quitApp:
      return "quitApp";
  }
  return "?";
}

void say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

class PanelHost final : public PanelWindowHost {
 public:
  void build() override {
    visible_ = true;
    say("panel open");
  }
  bool isVisible() const override { return visible_; }
  void moveTo(ScreenPoint) override {}
  void makeKeyAndOrderFront() override {}
  void destroy() override {
    visible_ = false;
    say("panel closed");
  }

 private:
  bool visible_ = false;
};

class TipHost final : public FirstRunTipHost {
 public:
  bool build() override { return true; }
  void show(ScreenPoint) override {}
  void dismiss() override {}
};

int probeMain() {
  PollMainLoop loop;
  const Clock& clock = Clock::system();
  // Nothing is measured: the queue never runs, the samples below stay.
  ManualSerialQueue queue;
  testing::FakeSystemCounters counters;
  testing::FakeProcessReader processes;
  testing::FakeHeavyReaders heavy;
  testing::RecordingConsumers consumers;
  const auto monitor = Monitor::create({loop, queue, clock, counters, processes, heavy, consumers});
  monitor->cpu.set(CPUSample{12.4, {}});
  monitor->memory.set(MemorySample{1000, 500, 100, 30, 0, 0});
  monitor->network.set(NetSample{14'200, 2'345'678});

  MemoryDefaultsStore store;
  testing::FakePermission permission;
  testing::FakeLoginItems loginItems;
  LaunchAtLogin login(loginItems);
  SettingsManager settings(
      store, [](double) {}, permission, login);
  L10n l10n(store, QM_RESOURCES_DIR, {"en"});
  SkinManager skins(store);
  PanelAnchor anchor;
  PanelFlipState flip(clock);
  PanelHost panelHost;
  PanelWindowController panel({panelHost, clock, anchor, flip, [](bool) {}});
  TipHost tipHost;
  FirstRunTipWindow tip(tipHost, loop, settings, anchor);

  MenuBarController* controller = nullptr;
  TrayStatusItemHost item(
      {loop, *monitor, settings, l10n, [&] { return controller->buildMenu(); },
       [&](MenuAction action, const MenuValue& value) {
         say(std::string("perform ") + nameOf(action));
         controller->perform(action, value);
       },
       [](const std::optional<TrayClick>& click) {
         say(click ? "anchor " + std::to_string(click->x) + " " + std::to_string(click->y) : "anchor none");
         return AnchorGeometry{};
       },
       [](const std::vector<MenuEntry>& menu, auto) { say("popup " + std::to_string(menu.size())); },
       [](bool shown) { say(std::string("shown ") + (shown ? "1" : "0")); }});
  MenuBarController menuBar({item, loop, settings, l10n, skins, *monitor, panel, flip, tip, {}, {}, [&loop] {
                               say("quit");
                               loop.quit();
                             }});
  controller = &menuBar;

  std::string error;
  if (!item.start(error)) {
    std::fprintf(stderr, "tray_probe: %s\n", error.c_str());
    return 1;
  }
  menuBar.setup();
  if (const char* tick = std::getenv("QM_TRAY_PROBE_TICK")) {
    if (!std::getenv("QM_TRAY_PROBE_ICON")) settings.menuBarMode.set(MenuBarMode::text);
    int n = 0;
    (void)loop.addRepeatingTimer(std::atof(tick), [&] {
      ++n;
      monitor->cpu.set(CPUSample{static_cast<double>(n % 40), {}});
      monitor->memory.set(MemorySample{1000, 500 + static_cast<std::uint64_t>(n % 7), 100, 30, 0, 0});
      monitor->network.set(NetSample{14'200.0 * (n % 5), 2'345'678});
      menuBar.updateStatusText();
    });
  }
  say("started");
  loop.run();
  monitor->stop();
  return 0;
}

}  // namespace
}  // namespace quillmark

int main() { return quillmark::probeMain(); }
