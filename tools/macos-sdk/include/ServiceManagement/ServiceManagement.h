// Stub SDK: registering the application as a login item (macOS 13+).
#pragma once
#include <Foundation/Foundation.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin

typedef NS_ENUM(NSInteger, SMAppServiceStatus) {
  SMAppServiceStatusNotRegistered = 0,
  SMAppServiceStatusEnabled = 1,
  SMAppServiceStatusRequiresApproval = 2,
  SMAppServiceStatusNotFound = 3,
};

__attribute__((availability(macos, introduced = 13.0)))
@interface SMAppService : NSObject
@property(class, readonly) SMAppService* mainAppService;
// A launchd daemon whose property list is in the bundle's Contents/Library/LaunchDaemons.
+ (instancetype)daemonServiceWithPlistName:(NSString*)plistName;
@property(readonly) SMAppServiceStatus status;
- (BOOL)registerAndReturnError:(NSError* _Nullable* _Nullable)error;
- (BOOL)unregisterAndReturnError:(NSError* _Nullable* _Nullable)error;
+ (void)openSystemSettingsLoginItems;
@end

#pragma clang assume_nonnull end
#endif
