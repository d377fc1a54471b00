#import <AppKit/AppKit.h>

#include "processes/process_os.h"

namespace quillmark {
namespace {

// The workspace's front application. Main thread (AppKit).
class WorkspaceFrontmostApp final : public FrontmostAppSource {
 public:
  std::optional<std::int32_t> frontmostPid() override {
    @autoreleasepool {
      NSRunningApplication* app = NSWorkspace.sharedWorkspace.frontmostApplication;
      if (app == nil) return std::nullopt;
      return app.processIdentifier;
    }
  }
  void activate(std::int32_t pid) override {
    @autoreleasepool {
      NSRunningApplication* app = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
      [app activateWithOptions:(NSApplicationActivationOptions)0];  // no options: just bring it forward
    }
  }
};

}  // namespace

std::unique_ptr<FrontmostAppSource> FrontmostAppSource::makePlatform() {
  return std::make_unique<WorkspaceFrontmostApp>();
}

}  // namespace quillmark
