#pragma once

#include <memory>
#include <optional>
#include <string>

#include "views/canvas.h"

namespace quillmark {

// Turns an icon reference (ProcessVisual::icon: a PNG file on Linux, an application bundle on
// macOS, whose icon the workspace supplies) into pixels no larger than kMaxSide square, which is
// enough for a row's icon at 2x. Slow (file reads, decoding): callers cache what it returns.
// Main thread (the macOS workspace wants it).
class ImageLoader {
 public:
  static constexpr int kMaxSide = 64;

  virtual ~ImageLoader() = default;
  // Nothing when the reference cannot be read or decoded.
  [[nodiscard]] virtual std::optional<Image> load(const std::string& reference) = 0;

  // Cairo's PNG reader on Linux, NSWorkspace on macOS.
  static std::unique_ptr<ImageLoader> makePlatform();
};

}  // namespace quillmark
