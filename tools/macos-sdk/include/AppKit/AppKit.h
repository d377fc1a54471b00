// Stub SDK: the AppKit classes of the application shell (status item, menu, appearance).
#pragma once
#include <CoreGraphics/CGBase.h>
#include <Foundation/Foundation.h>
#include <sys/types.h>

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

// The workspace's running applications: the front one, and one looked up by pid.
typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions) {
  NSApplicationActivateAllWindows = 1 << 0,
  NSApplicationActivateIgnoringOtherApps = 1 << 1,
};

@interface NSRunningApplication : NSObject
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
@property(nullable, readonly, copy) NSString* localizedName;
@property(nullable, readonly, copy) NSURL* bundleURL;
@property(readonly) pid_t processIdentifier;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
@end

@class NSImage;

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(nullable, readonly, strong) NSRunningApplication* frontmostApplication;
- (NSImage*)iconForFile:(NSString*)fullPath;
@end

#pragma clang assume_nonnull end
#endif

// The menu-bar shell: windows, events, drawing, text input, and its additions to the classes above.
#include <AppKit/NSEvent.h>
#include <AppKit/NSGraphics.h>
#include <AppKit/NSShellAdditions.h>
#include <AppKit/NSTextInputClient.h>
#include <AppKit/NSWindow.h>
