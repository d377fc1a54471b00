#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

#include <string>
#include <utility>

#include "fans/fan_helper_protocol_darwin.h"
#include "fans/fan_helper_transport.h"

namespace quillmark {
namespace {

std::string describe(NSError* error) {
  NSString* text = error ? error.localizedDescription : nil;
  const char* utf8 = text ? text.UTF8String : nullptr;
  return utf8 ? std::string(utf8) : std::string("unknown error");
}

NSString* toNSString(std::string_view text) {
  NSString* string = [NSString stringWithUTF8String:std::string(text).c_str()];
  return string ? string : @"";
}

// One NSXPCConnection to the privileged daemon. Replies arrive on XPC's private queue; the fan
// data is decoded there, as FanHelperClient moves every reply to the main queue itself.
class XpcConnection final : public FanHelperConnection {
 public:
  explicit XpcConnection(NSXPCConnection* connection) : connection_(connection) {}
  ~XpcConnection() override { [connection_ invalidate]; }

  void send(const FanRequest& request, ReplyHandler reply, ErrorHandler onError) override {
    id<FanHelperProtocol> proxy = [connection_ remoteObjectProxyWithErrorHandler:^(NSError* error) {
      if (onError) onError(describe(error));
    }];
    const std::uint64_t requestId = request.id;
    switch (request.op) {
      case FanOp::getVersion: {
        [proxy getVersionWithReply:^(NSString* version) {
          const char* utf8 = version ? version.UTF8String : nullptr;
          if (reply) reply(FanReply{requestId, utf8 != nullptr, utf8 ? utf8 : "", {}, ""});
        }];
        return;
      }
      case FanOp::readFans: {
        [proxy readFansWithReply:^(NSData* data) {
          const std::string_view json =
              data ? std::string_view(static_cast<const char*>(data.bytes), data.length) : std::string_view();
          if (reply) reply(FanReply{requestId, true, "", FanProtocol::decodeFanReadings(json), ""});
        }];
        return;
      }
      case FanOp::setFanFloor: {
        [proxy setFanFloorWithRpm:static_cast<NSInteger>(request.rpm)
                            reply:^(BOOL ok) {
                              if (reply) reply(FanReply{requestId, static_cast<bool>(ok), "", {}, ""});
                            }];
        return;
      }
      case FanOp::releaseControl: {
        [proxy releaseControlWithReply:^(BOOL ok) {
          if (reply) reply(FanReply{requestId, static_cast<bool>(ok), "", {}, ""});
        }];
        return;
      }
      case FanOp::heartbeat: {
        [proxy heartbeat];
        return;
      }
    }
  }

  void invalidate() override { [connection_ invalidate]; }

 private:
  NSXPCConnection* connection_;
};

// The launchd daemon registered through SMAppService from the bundle's property list, reached
// over its Mach service in the system namespace.
class XpcTransport final : public FanHelperTransport {
 public:
  XpcTransport() : service_([SMAppService daemonServiceWithPlistName:toNSString(kFanHelperPlistName)]) {}

  ServiceStatus status() override {
    switch (service_.status) {
      case SMAppServiceStatusNotRegistered:
        return ServiceStatus::notRegistered;
      case SMAppServiceStatusEnabled:
        return ServiceStatus::enabled;
      case SMAppServiceStatusRequiresApproval:
        return ServiceStatus::requiresApproval;
      case SMAppServiceStatusNotFound:
        break;
    }
    return ServiceStatus::notFound;
  }

  std::optional<std::string> registerService() override {
    NSError* error = nil;
    if ([service_ registerAndReturnError:&error]) return std::nullopt;
    return describe(error);
  }

  void unregisterService() override {
    NSError* ignored = nil;
    (void)[service_ unregisterAndReturnError:&ignored];
  }

  std::unique_ptr<FanHelperConnection> open(std::function<void()> onInvalidated) override {
    NSXPCConnection* connection =
        [[NSXPCConnection alloc] initWithMachServiceName:toNSString(fanHelperMachName)
                                                 options:NSXPCConnectionPrivileged];
    connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(FanHelperProtocol)];
    connection.invalidationHandler = ^{
      if (onInvalidated) onInvalidated();
    };
    [connection resume];
    return std::make_unique<XpcConnection>(connection);
  }

 private:
  SMAppService* service_;
};

}  // namespace

std::unique_ptr<FanHelperTransport> FanHelperTransport::makePlatform() {
  return std::make_unique<XpcTransport>();
}

}  // namespace quillmark
