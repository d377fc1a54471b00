#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

#include <memory>
#include <string>

#include "insights/notification_center.h"

namespace {

NSString* toNSString(const std::string& text) {
  NSString* string = [NSString stringWithUTF8String:text.c_str()];
  return string ? string : @"";
}

}  // namespace

// The centre's delegate: banners with sound even while the program is frontmost, and a click
// hops to the main thread to open the panel. The centre calls it on a background queue.
@interface QMNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
- (instancetype)initWithLoop:(quillmark::MainLoop*)loop onClick:(std::function<void()>)onClick;
@end

@implementation QMNotificationDelegate {
  quillmark::MainLoop* _loop;
  std::shared_ptr<std::function<void()>> _onClick;
}

- (instancetype)initWithLoop:(quillmark::MainLoop*)loop onClick:(std::function<void()>)onClick {
  if ((self = [super init])) {
    _loop = loop;
    _onClick = std::make_shared<std::function<void()>>(std::move(onClick));
  }
  return self;
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler {
  (void)center, (void)notification;
  completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
  (void)center, (void)response;
  std::weak_ptr<std::function<void()>> weak = _onClick;
  _loop->post([weak] {
    if (auto onClick = weak.lock(); onClick && *onClick) (*onClick)();
  });
  completionHandler();
}

@end

namespace quillmark {
namespace {

// UNUserNotificationCenter; needs a signed application bundle (an unbundled binary has no centre).
class UserNotificationCenter final : public NotificationCenter {
 public:
  explicit UserNotificationCenter(MainLoop& loop) : loop_(loop) {}

  void activate(std::function<void()> onClick) override {
    UNUserNotificationCenter* center = UNUserNotificationCenter.currentNotificationCenter;
    // The centre holds its delegate weakly; this object keeps it alive.
    delegate_ = [[QMNotificationDelegate alloc] initWithLoop:&loop_ onClick:std::move(onClick)];
    center.delegate = delegate_;
    [center removeAllDeliveredNotifications];
  }

  void requestAuthorization(std::function<void(bool)> completion) override {
    MainLoop* loop = &loop_;
    auto box = std::make_shared<std::function<void(bool)>>(std::move(completion));
    [UNUserNotificationCenter.currentNotificationCenter
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                      completionHandler:^(BOOL granted, NSError* _Nullable error) {
                        (void)error;
                        const bool answer = granted;
                        loop->post([box, answer] { (*box)(answer); });
                      }];
  }

  void deliver(const Notification& notification) override {
    UNMutableNotificationContent* content = [[UNMutableNotificationContent alloc] init];
    content.title = toNSString(notification.title);
    content.body = toNSString(notification.body);
    content.sound = UNNotificationSound.defaultSound;
    // No trigger: deliver now. The same identifier replaces the earlier notification.
    UNNotificationRequest* request =
        [UNNotificationRequest requestWithIdentifier:toNSString(notification.identifier)
                                             content:content
                                             trigger:nil];
    [UNUserNotificationCenter.currentNotificationCenter addNotificationRequest:request
                                                         withCompletionHandler:nil];
  }

 private:
  MainLoop& loop_;
  QMNotificationDelegate* delegate_ = nil;
};

}  // namespace

std::unique_ptr<NotificationCenter> NotificationCenter::makePlatform(MainLoop& loop) {
  return std::make_unique<UserNotificationCenter>(loop);
}

}  // namespace quillmark
