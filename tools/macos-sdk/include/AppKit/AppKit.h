// Stub SDK: the AppKit classes of the application shell (status item, menu, appearance).
#pragma once
#include <CoreGraphics/CGBase.h>
#include <Foundation/Foundation.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
  NSApplicationActivationPolicyAccessory = 1,
};

typedef NSString* NSAppearanceName;
extern NSAppearanceName const NSAppearanceNameDarkAqua;

@interface NSAppearance : NSObject
+ (nullable NSAppearance*)appearanceNamed:(NSAppearanceName)name;
@end

@class NSApplication;

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

@interface NSResponder : NSObject
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(nullable, strong) NSAppearance* appearance;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
- (void)terminate:(nullable id)sender;
- (void)run;
@end

extern __kindof NSApplication* _Null_unspecified NSApp;

@interface NSView : NSResponder
@end

@interface NSControl : NSView
@end

@interface NSButton : NSControl
@property(copy) NSString* title;
@end

@interface NSStatusBarButton : NSButton
@end

@interface NSMenuItem : NSObject
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
- (NSMenuItem*)addItemWithTitle:(NSString*)string
                         action:(nullable SEL)selector
                  keyEquivalent:(NSString*)charCode;
@end

extern const CGFloat NSVariableStatusItemLength;

@interface NSStatusItem : NSObject
@property(nullable, readonly, strong) NSStatusBarButton* button;
@property(nullable, strong) NSMenu* menu;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
@end

#pragma clang assume_nonnull end
#endif
