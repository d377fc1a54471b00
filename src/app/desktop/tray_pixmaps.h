#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace quillmark {

class CairoCanvas;

// One image of a StatusNotifierItem: ARGB32 with straight alpha, each pixel four bytes A, R, G,
// B in that order (network byte order), rows top to bottom.
struct TrayPixmap {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> argb;
  bool operator==(const TrayPixmap&) const = default;
};

// Which way the glyphs contrast with the panel they sit on. Light glyphs suit the dark panels
// most desktops ship with, and are used when the desktop states no preference.
enum class TrayGlyphs { light, dark };

// Draws the status item's images: the status icon alone (square, one per size, for hosts to pick
// from) and, in text mode, the icon followed by the live text on one line (as tall as each size,
// as wide as the text needs). Sizes are pixels. Main thread only (it keeps a canvas for measuring).
class TrayPainter {
 public:
  static constexpr int kSizes[] = {16, 22, 24, 32, 48};
  // Text is redrawn on every tick and unreadable below 22 pixels, so fewer sizes.
  static constexpr int kTextSizes[] = {22, 24, 32, 48};

  TrayPainter();
  ~TrayPainter();
  TrayPainter(const TrayPainter&) = delete;
  TrayPainter& operator=(const TrayPainter&) = delete;

  [[nodiscard]] std::vector<TrayPixmap> icon(TrayGlyphs glyphs);
  [[nodiscard]] std::vector<TrayPixmap> iconWithText(std::string_view text, TrayGlyphs glyphs);

 private:
  struct TextSlot;
  std::unique_ptr<CairoCanvas> measurer_;
  std::array<std::unique_ptr<TextSlot>, std::size(kTextSizes)> textSlots_;
};

}  // namespace quillmark
