#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

#include "settings/launch_at_login.h"

namespace quillmark {
namespace {

std::string describe(NSError* error) {
  if (!error) return "unknown error";
  NSString* text = error.localizedDescription;
  return text ? std::string(text.UTF8String ? text.UTF8String : "") : std::string("unknown error");
}

// The main application's login item, registered through SMAppService.mainApp.
class MainAppLoginItem final : public LoginItemService {
 public:
  long status() override { return static_cast<long>(SMAppService.mainAppService.status); }

  std::optional<std::string> registerItem() override {
    NSError* error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error]) return std::nullopt;
    return describe(error);
  }

  std::optional<std::string> unregisterItem() override {
    NSError* error = nil;
    if ([SMAppService.mainAppService unregisterAndReturnError:&error]) return std::nullopt;
    return describe(error);
  }

  void openSystemSettings() override { [SMAppService openSystemSettingsLoginItems]; }
};

}  // namespace

LoginItemService& LoginItemService::platform() {
  static MainAppLoginItem service;
  return service;
}

}  // namespace quillmark
