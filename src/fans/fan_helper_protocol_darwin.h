// The XPC protocol the macOS fan helper daemon serves, shared by the app's client and the daemon.
// Every reply block is called once by the daemon; heartbeat is one-way. readFansWithReply:
// answers with FanProtocol's JSON array of fan readings.
#pragma once

#import <Foundation/Foundation.h>

@protocol FanHelperProtocol
- (void)getVersionWithReply:(void (^)(NSString* version))reply;
- (void)readFansWithReply:(void (^)(NSData* fans))reply;
- (void)setFanFloorWithRpm:(NSInteger)rpm reply:(void (^)(BOOL ok))reply;
- (void)releaseControlWithReply:(void (^)(BOOL ok))reply;
- (void)heartbeat;
@end
