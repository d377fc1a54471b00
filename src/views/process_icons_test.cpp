// Process icons: a PNG comes back as straight RGBA no larger than the loader's limit, each icon
// is decoded once for every process of its application (failures too), and a row draws its icon
// or, without one, a monogram tile.
#include "views/process_icons.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "views/testing/panel_fixture.h"

namespace quillmark {
namespace {

TEST(ProcessIconsTest, PngLoadsAsStraightRgbaWithinTheLimit) {
  auto canvas = CairoCanvas::offscreen({128, 96}, 1);
  canvas->fill(Path().addRect({0, 0, 128, 96}), Color::rgb(0xff0000, 0.5));
  const std::string path = "/tmp/qm-icon-" + std::to_string(::getpid()) + ".png";
  std::string error;
  ASSERT_TRUE(canvas->writePng(path, error)) << error;
  const auto loader = ImageLoader::makePlatform();
  const auto image = loader->load(path);
  std::remove(path.c_str());
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width, 64);  // 128 x 96 shrunk to fit 64, keeping its shape
  EXPECT_EQ(image->height, 48);
  const std::uint8_t* centre = &image->rgba[(24 * 64 + 32) * 4];
  EXPECT_NEAR(centre[0], 255, 2);  // not premultiplied (which would read 128)
  EXPECT_EQ(centre[1], 0);
  EXPECT_NEAR(centre[3], 128, 2);
  EXPECT_FALSE(loader->load("/nonexistent/icon.png"));
  EXPECT_FALSE(loader->load("/etc/hostname"));  // not a PNG
}

class FakeSource final : public VisualSource {
 public:
  ProcessVisual lookup(std::int32_t pid, std::string_view name) override {
    if (pid == 3) return {std::string(name), std::nullopt};
    return {std::string(name), pid == 4 ? "broken.png" : "app.png"};
  }
};

class CountingLoader final : public ImageLoader {
 public:
  int loads = 0;
  std::optional<Image> load(const std::string& reference) override {
    ++loads;
    if (reference == "broken.png") return std::nullopt;
    return Image{1, 1, {0, 255, 0, 255}};
  }
};

TEST(ProcessIconsTest, EachIconIsDecodedOnce) {
  FakeSource source;
  ProcessVisualCache visuals(source);
  CountingLoader loader;
  ProcessIconCache icons(visuals, loader);
  const auto first = icons.icon(1, 100, "Safari");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(icons.icon(2, 100, "Safari Helper"), first);  // another process of the same application
  EXPECT_EQ(icons.icon(1, 100, "Safari"), first);
  EXPECT_EQ(icons.icon(3, 100, "sh"), nullptr);  // no application
  EXPECT_EQ(icons.icon(4, 100, "Broken"), nullptr);
  EXPECT_EQ(icons.icon(4, 100, "Broken"), nullptr);
  EXPECT_EQ(loader.loads, 2);
}

TEST(ProcessIconsTest, RowsDrawTheirIconOrAMonogram) {
  for (const bool withIcon : {true, false}) {
    testing::PanelFixture f;
    if (withIcon) {
      Image green{8, 8, {}};
      for (int i = 0; i < 64; ++i) green.rgba.insert(green.rgba.end(), {0, 255, 0, 255});
      f.actions.icon = std::make_shared<const Image>(std::move(green));
    }
    f.root.setModel(testing::sampleModel());
    View* icon = f.find("row:100") ? f.find("row:100")->findById("icon") : nullptr;
    ASSERT_NE(icon, nullptr);
    testing::PanelFixture::reveal(*icon);
    f.root.paint(*f.canvas);
    // The middle of the icon; for the monogram, its tile's top edge, above the letter.
    const Point c = testing::PanelFixture::at(*icon, 0.5, withIcon ? 0.5 : 0.1);
    const Color drawn = f.canvas->pixel(static_cast<int>(c.x), static_cast<int>(c.y));
    if (withIcon) {
      EXPECT_GT(drawn.g, 0.95);
      EXPECT_LT(drawn.r, 0.05);
    } else {
      EXPECT_GT(drawn.a, 0.8);  // the tile, not the row's background showing through
      EXPECT_LT(drawn.g, 0.9);
    }
  }
}

}  // namespace
}  // namespace quillmark
