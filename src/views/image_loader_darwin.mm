#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>

#include "base/cf_ref_darwin.h"
#include "views/image_loader.h"

namespace quillmark {
namespace {

// The workspace's icon of a file or bundle (an application's own icon for its bundle), drawn once
// into an RGBA bitmap of kMaxSide square.
class WorkspaceIconLoader final : public ImageLoader {
 public:
  std::optional<Image> load(const std::string& reference) override {
    @autoreleasepool {
      NSString* path = [NSString stringWithUTF8String:reference.c_str()];
      if (path == nil) return std::nullopt;
      NSImage* icon = [[NSWorkspace sharedWorkspace] iconForFile:path];
      if (icon == nil) return std::nullopt;
      NSRect wanted = NSMakeRect(0, 0, kMaxSide, kMaxSide);
      // Owned by the image (and the pool), not by us.
      CGImageRef picture = [icon CGImageForProposedRect:&wanted context:nil hints:nil];
      if (picture == nullptr) return std::nullopt;
      Image image{kMaxSide, kMaxSide,
                  std::vector<std::uint8_t>(static_cast<std::size_t>(kMaxSide) * kMaxSide * 4)};
      const CFRef<CGColorSpaceRef> space(CGColorSpaceCreateDeviceRGB());
      const CFRef<CGContextRef> bitmap(CGBitmapContextCreate(image.rgba.data(), kMaxSide, kMaxSide, 8,
                                                             kMaxSide * 4, space.get(),
                                                             kCGImageAlphaPremultipliedLast));
      if (!bitmap) return std::nullopt;
      CGContextDrawImage(bitmap.get(), CGRectMake(0, 0, kMaxSide, kMaxSide), picture);
      // The bitmap's first row is the picture's top; its colours are premultiplied, Image's not.
      for (std::size_t i = 0; i < image.rgba.size(); i += 4) {
        const unsigned a = image.rgba[i + 3];
        for (std::size_t c = 0; c < 3; ++c) {
          const unsigned value = image.rgba[i + c];
          image.rgba[i + c] =
              static_cast<std::uint8_t>(a == 0 ? 0 : std::min(255u, (value * 255 + a / 2) / a));
        }
      }
      return image;
    }
  }
};

}  // namespace

std::unique_ptr<ImageLoader> ImageLoader::makePlatform() { return std::make_unique<WorkspaceIconLoader>(); }

}  // namespace quillmark
