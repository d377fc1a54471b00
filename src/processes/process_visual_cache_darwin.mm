#import <AppKit/AppKit.h>

#include "processes/process_visual_cache.h"

namespace quillmark {
namespace {

// The running application of a pid: its localized name, and its bundle as the icon's source (the
// workspace draws a bundle's icon). Command-line processes have no running application.
class RunningApplicationSource final : public VisualSource {
 public:
  ProcessVisual lookup(std::int32_t pid, std::string_view fallbackName) override {
    @autoreleasepool {
      NSRunningApplication* app = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
      if (app == nil) return {std::string(fallbackName), std::nullopt};
      NSString* localized = app.localizedName;
      const char* name = localized != nil ? localized.UTF8String : nullptr;
      ProcessVisual visual{name != nullptr && *name != '\0' ? std::string(name) : std::string(fallbackName),
                           std::nullopt};
      NSString* bundle = app.bundleURL.path;
      if (bundle != nil && bundle.UTF8String != nullptr) visual.icon = std::string(bundle.UTF8String);
      return visual;
    }
  }
};

}  // namespace

std::unique_ptr<VisualSource> VisualSource::makePlatform() {
  return std::make_unique<RunningApplicationSource>();
}

}  // namespace quillmark
