// Stub SDK: the Foundation classes our Objective-C++ code sends messages to.
#pragma once
#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/NSObjCRuntime.h>
#include <objc/NSObject.h>

// Used by the menu-bar shell.
#include <Foundation/NSArray.h>
#include <Foundation/NSAttributedString.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSRange.h>
#include <Foundation/NSValue.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin

@interface NSString : NSObject
+ (nullable instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@property(nullable, readonly) const char* UTF8String __attribute__((objc_returns_inner_pointer));
@property(readonly) NSUInteger length;  // in UTF-16 code units
- (BOOL)isEqualToString:(NSString*)aString;
@end

@interface NSNotification : NSObject
@end

@interface NSURL : NSObject
+ (NSURL*)fileURLWithPath:(NSString*)path;
@property(nullable, readonly, copy) NSString* path;
@end

@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@end

// Data and XPC: the fan helper's client (a privileged Mach service) and its daemon (the listener).
@class Protocol;

@interface NSData : NSObject
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
@property(readonly) const void* bytes __attribute__((objc_returns_inner_pointer));
@property(readonly) NSUInteger length;
@end

typedef NS_OPTIONS(NSUInteger, NSXPCConnectionOptions){
    NSXPCConnectionPrivileged = (1 << 12),
};

@interface NSXPCInterface : NSObject
+ (NSXPCInterface*)interfaceWithProtocol:(Protocol*)protocol;
@end

@interface NSXPCConnection : NSObject
- (instancetype)initWithMachServiceName:(NSString*)name options:(NSXPCConnectionOptions)options;
@property(nullable, retain) NSXPCInterface* remoteObjectInterface;
@property(nullable, retain) NSXPCInterface* exportedInterface;
@property(nullable, retain) id exportedObject;
@property(nullable, copy) void (^invalidationHandler)(void);
@property(nullable, copy) void (^interruptionHandler)(void);
- (void)resume;
- (void)invalidate;
- (id)remoteObjectProxyWithErrorHandler:(void (^)(NSError* error))handler;
- (void)setCodeSigningRequirement:(NSString*)requirement __attribute__((availability(macos, introduced = 13.0)));
@end

@class NSXPCListener;
@protocol NSXPCListenerDelegate <NSObject>
@optional
- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)newConnection;
@end

@interface NSXPCListener : NSObject
- (instancetype)initWithMachServiceName:(NSString*)name;
@property(nullable, weak) id<NSXPCListenerDelegate> delegate;
- (void)resume;
@end

#pragma clang assume_nonnull end
#endif
