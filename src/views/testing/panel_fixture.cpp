#include "views/testing/panel_fixture.h"

#include "views/label.h"
#include "views/scroll_view.h"

namespace quillmark::testing {

void PanelFixture::reveal(View& view) {
  for (View* v = view.parent(); v; v = v->parent()) {
    if (auto* scroll = dynamic_cast<ScrollView*>(v)) {
      const double y = view.originIn(&scroll->content()).y;
      scroll->setOffset(y + view.frame.height / 2 - scroll->frame.height / 2);
      return;
    }
  }
}

std::vector<std::string> PanelFixture::rowNames() {
  std::vector<std::string> names;
  View* processes = find("processes");
  if (!processes) return names;
  for (const auto& child : processes->children()) {
    if (child->id.starts_with("row:")) names.push_back(static_cast<Label*>(child->findById("name"))->text);
  }
  return names;
}

PanelModel sampleModel() {
  PanelModel m;
  m.cpu = {37.5, {50, 25, 100, 0}};
  m.memory = {16ull << 30, 6ull << 30, 2ull << 30, 1ull << 30, 4ull << 30, 3ull << 30};
  m.network = {125000, 5000};
  m.processes = {{100, "Safari", 12.5, 900ull << 20},
                 {101, "Web Content Helper", 30, 400ull << 20},
                 {102, "kernel_task", 0.01, 2ull << 30},
                 {103, "A process with a very long name that cannot fit the row", 1, 10ull << 20},
                 {104, "Xcode", 0, 3ull << 30}};
  m.diskFree = 200ull << 30;
  m.diskTotal = 500ull << 30;
  m.cpuHistory = {10, 20, 30, 40};
  return m;
}

}  // namespace quillmark::testing
