// The macOS fan helper: a launchd daemon (root) serving FanHelperProtocol on the Mach service
// "com.quillmark.helper" to Quillmark alone. Every call into the hold runs on one serial queue;
// XPC's own queues only hand work to it.

#import <Foundation/Foundation.h>
#include <IOKit/IOMessage.h>
#include <IOKit/pwr_mgt/IOPMLib.h>
#include <dispatch/dispatch.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

#include "base/clock.h"
#include "fans/daemon/fan_daemon.h"
#include "fans/daemon/smc_fan_backend.h"
#include "fans/fan_helper_protocol_darwin.h"
#include "fans/fan_protocol.h"

namespace {

// Only the signed Quillmark app may connect; the requirement is checked by XPC on every message.
NSString* const kClientRequirement = @"identifier \"com.quillmark.app\" and anchor apple generic";

dispatch_queue_t gQueue;
quillmark::FanDaemon* gDaemon = nullptr;

void logLine(std::string_view line) {
  std::fprintf(stderr, "QuillmarkHelper: %.*s\n", static_cast<int>(line.size()), line.data());
}

io_connect_t gRootPowerPort = 0;

// On the daemon's queue: the fans go back before the machine sleeps, so none wakes up held;
// Quillmark asks for its floor again after the wake. Sleep waits until the change is allowed.
void onSystemPower(void* /*refcon*/, io_service_t /*service*/, uint32_t message, void* argument) {
  if (message == kIOMessageSystemWillSleep) gDaemon->releaseAll("system going to sleep");
  if (message == kIOMessageSystemWillSleep || message == kIOMessageCanSystemSleep) {
    IOAllowPowerChange(gRootPowerPort, reinterpret_cast<intptr_t>(argument));
  }
}

// Runs one command on the daemon's queue and returns its answer.
quillmark::FanReply handle(quillmark::FanDaemon::ClientId client, quillmark::FanRequest request) {
  __block quillmark::FanReply reply;
  dispatch_sync(gQueue, ^{
    reply = gDaemon->handle(client, request).value_or(quillmark::FanReply{});
  });
  return reply;
}

}  // namespace

// One per connection: the commands of one client.
@interface QMFanHelperSession : NSObject <FanHelperProtocol>
- (instancetype)initWithClient:(quillmark::FanDaemon::ClientId)client;
@end

@implementation QMFanHelperSession {
  quillmark::FanDaemon::ClientId _client;
}

- (instancetype)initWithClient:(quillmark::FanDaemon::ClientId)client {
  self = [super init];
  if (self) _client = client;
  return self;
}

- (void)getVersionWithReply:(void (^)(NSString*))reply {
  reply([NSString stringWithUTF8String:std::string(quillmark::kFanHelperVersion).c_str()]);
}

- (void)readFansWithReply:(void (^)(NSData*))reply {
  const auto answer = handle(_client, {quillmark::FanOp::readFans});
  const std::string json = quillmark::FanProtocol::encodeFanReadings(answer.fans);
  reply([NSData dataWithBytes:json.data() length:json.size()]);
}

- (void)setFanFloorWithRpm:(NSInteger)rpm reply:(void (^)(BOOL))reply {
  // The same bounds as the socket protocol: a negative or absurd speed is refused, not clamped.
  if (rpm < 0 || rpm > quillmark::FanProtocol::kMaxRpm) {
    reply(NO);
    return;
  }
  reply(handle(_client, {quillmark::FanOp::setFanFloor, 0, static_cast<std::int64_t>(rpm)}).ok);
}

- (void)releaseControlWithReply:(void (^)(BOOL))reply {
  reply(handle(_client, {quillmark::FanOp::releaseControl}).ok);
}

- (void)heartbeat {
  (void)handle(_client, {quillmark::FanOp::heartbeat});
}

@end

@interface QMFanHelperListener : NSObject <NSXPCListenerDelegate>
@end

@implementation QMFanHelperListener {
  quillmark::FanDaemon::ClientId _nextClient;
}

- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)connection {
  (void)listener;
  [connection setCodeSigningRequirement:kClientRequirement];
  const quillmark::FanDaemon::ClientId client = ++_nextClient;
  connection.exportedInterface = [NSXPCInterface interfaceWithProtocol:@protocol(FanHelperProtocol)];
  connection.exportedObject = [[QMFanHelperSession alloc] initWithClient:client];
  // A client that quits, crashes or fails the signature check hands its floor back.
  connection.invalidationHandler = ^{
    dispatch_async(gQueue, ^{
      gDaemon->clientGone(client);
    });
  };
  [connection resume];
  return YES;
}

@end

int main() {
  using namespace quillmark;
  gQueue = dispatch_queue_create("com.quillmark.helper.fans", DISPATCH_QUEUE_SERIAL);
  std::unique_ptr<SmcFanAccess> smc = SmcFanAccess::open();
  if (!smc) {
    logLine("cannot open the SMC");
    return 1;
  }
  SmcFanBackend backend(*smc, [](double seconds) { ::usleep(static_cast<useconds_t>(seconds * 1e6)); });
  // A floor left by a run that crashed is handed back before anything else.
  if (const int restored = backend.restoreLeftovers(); restored > 0) {
    logLine("restored " + std::to_string(restored) + " fan(s) left in manual mode by an earlier run");
  }
  FanDaemon daemon(backend, Clock::system(), logLine);
  gDaemon = &daemon;

  // The heartbeat deadline, once a second.
  dispatch_source_t tick = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, gQueue);
  dispatch_source_set_timer(tick, dispatch_time(DISPATCH_TIME_NOW, NSEC_PER_SEC), NSEC_PER_SEC,
                            NSEC_PER_SEC / 10);
  dispatch_source_set_event_handler(tick, ^{
    gDaemon->poll();
  });
  dispatch_resume(tick);

  IONotificationPortRef powerPort = nullptr;
  io_object_t powerNotifier = 0;
  gRootPowerPort = IORegisterForSystemPower(nullptr, &powerPort, onSystemPower, &powerNotifier);
  if (gRootPowerPort == 0) {
    logLine("cannot watch for system sleep");
  } else {
    IONotificationPortSetDispatchQueue(powerPort, gQueue);
  }

  // launchd stops the daemon with SIGTERM: the fans go back first.
  std::signal(SIGTERM, SIG_IGN);
  dispatch_source_t term = dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, SIGTERM, 0, gQueue);
  dispatch_source_set_event_handler(term, ^{
    gDaemon->releaseAll("daemon stopping");
    std::exit(0);
  });
  dispatch_resume(term);

  QMFanHelperListener* delegate = [[QMFanHelperListener alloc] init];
  NSXPCListener* listener = [[NSXPCListener alloc]
      initWithMachServiceName:[NSString stringWithUTF8String:std::string(fanHelperMachName).c_str()]];
  listener.delegate = delegate;
  [listener resume];
  dispatch_main();
}
