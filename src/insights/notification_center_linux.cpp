// org.freedesktop.Notifications on the session bus, through sd-bus.
//
// The bus connection lives on a thread of its own and only that thread touches it (sd-bus objects
// are not thread-safe): the main thread queues jobs and wakes it through an eventfd; replies and
// signals come back to the main thread through MainLoop::post. Calls are asynchronous, so a slow
// or hung notification server never stalls sampling.
//
// Linux servers have no permission model, so "permission" means that a server answers on the bus;
// with none (no session bus, nothing owning the name) the answer is no, and the log says why.

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include "base/log.h"
#include "insights/notification_center.h"

namespace quillmark {
namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr const char* kInterface = "org.freedesktop.Notifications";
// The basename of our .desktop file; servers use it to attribute the notification.
constexpr const char* kDesktopEntry = "quillmark";
constexpr std::uint64_t kCallTimeoutUsec = 5'000'000;

// Sends m and hands ctx to the reply handler.
// The bus owns the pending call and deletes ctx after the handler ran, or when the bus closes
// with the call still pending.
template <class Context>
int callAsync(sd_bus* bus, sd_bus_message* m, sd_bus_message_handler_t handler,
              std::unique_ptr<Context> ctx) {
  sd_bus_slot* slot = nullptr;
  const int r = sd_bus_call_async(bus, &slot, m, handler, ctx.get(), kCallTimeoutUsec);
  if (r < 0) return r;
  sd_bus_slot_set_destroy_callback(slot, [](void* p) { delete static_cast<Context*>(p); });
  (void)ctx.release();
  sd_bus_slot_set_floating(slot, 1);
  sd_bus_slot_unref(slot);
  return r;
}

std::string errorText(const sd_bus_error* error, int r) {
  if (error && error->name)
    return std::string(error->name) + (error->message ? ": " + std::string(error->message) : "");
  return std::strerror(-r);
}

class FreedesktopNotificationCenter final : public NotificationCenter {
 public:
  explicit FreedesktopNotificationCenter(MainLoop& loop)
      : loop_(loop),
        shared_(std::make_shared<MainState>()),
        wakeFd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

  ~FreedesktopNotificationCenter() override {
    {
      std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    wake();
    if (thread_.joinable()) thread_.join();
    if (wakeFd_ >= 0) close(wakeFd_);
  }

  void activate(std::function<void()> onClick) override {
    shared_->onClick = std::move(onClick);
    // Nothing to clear: an earlier run's notifications have ids this run never knew. The bus is
    // connected at the first request, so a program that never alerts never connects.
  }

  void requestAuthorization(std::function<void(bool)> completion) override {
    auto box = std::make_shared<std::function<void(bool)>>(std::move(completion));
    submit([this, box](sd_bus* bus) {
      if (!bus) return answer(box, false, "no session bus (" + connectError_ + ")");
      sd_bus_message* m = nullptr;
      int r = sd_bus_message_new_method_call(bus, &m, kService, kPath, kInterface, "GetServerInformation");
      if (r >= 0)
        r = callAsync(bus, m, &FreedesktopNotificationCenter::onServerInformation,
                      std::make_unique<AuthContext>(AuthContext{this, box}));
      sd_bus_message_unref(m);
      if (r < 0) {
        answer(box, false, std::string("cannot ask the notification server: ") + std::strerror(-r));
      }
    });
  }

  void deliver(const Notification& notification) override {
    submit([this, notification](sd_bus* bus) {
      if (!bus) return;
      notify(bus, notification);
    });
  }

 private:
  // Main-thread state that posted tasks reach; gone with the centre, so late replies do nothing.
  struct MainState {
    std::function<void()> onClick;
  };
  struct AuthContext {
    FreedesktopNotificationCenter* self;
    std::shared_ptr<std::function<void(bool)>> completion;
  };
  struct NotifyContext {
    FreedesktopNotificationCenter* self;
    std::string identifier;
  };
  using Job = std::function<void(sd_bus*)>;

  [[nodiscard]] bool ensureThread() {
    if (thread_.joinable()) return true;
    if (wakeFd_ < 0) return false;
    try {
      thread_ = std::thread([this] { run(); });
      return true;
    } catch (const std::system_error& error) {
      Log::debug(std::string("Notifications: no bus thread: ") + error.what());
      return false;
    }
  }

  void submit(Job job) {
    // Without the bus thread every job runs here as if no bus were there: a permission request
    // still gets its answer (no).
    if (!ensureThread()) {
      connectError_ = "no bus thread";
      job(nullptr);
      return;
    }
    {
      std::lock_guard lock(mutex_);
      jobs_.push_back(std::move(job));
    }
    wake();
  }

  void wake() {
    const std::uint64_t one = 1;
    if (wakeFd_ >= 0) (void)!write(wakeFd_, &one, sizeof one);
  }

  // Bus thread from here on.
  void answer(const std::shared_ptr<std::function<void(bool)>>& box, bool granted, const std::string& why) {
    if (!granted) Log::debug("Notifications unavailable: " + why);
    std::weak_ptr<MainState> weak = shared_;
    loop_.post([weak, box, granted] {
      if (weak.lock() && *box) (*box)(granted);
    });
  }

  static int onServerInformation(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    const auto* ctx = static_cast<const AuthContext*>(userdata);
    const sd_bus_error* error = sd_bus_message_get_error(reply);
    if (error) {
      ctx->self->answer(ctx->completion, false,
                        "no notification server answers (" + errorText(error, -EIO) + ")");
      return 0;
    }
    const char* name = nullptr;
    const char* vendor = nullptr;
    const char* version = nullptr;
    const char* specVersion = nullptr;
    if (sd_bus_message_read(reply, "ssss", &name, &vendor, &version, &specVersion) >= 0)
      Log::debug(std::string("Notifications: server ") + name + " " + version + " (" + vendor + ")");
    ctx->self->answer(ctx->completion, true, {});
    return 0;
  }

  void notify(sd_bus* bus, const Notification& n) {
    // The id to replace comes with the reply to the previous Notify; until it is here, the newest
    // notification of that identifier waits (and replaces any older one still waiting).
    if (inFlight_.contains(n.identifier)) {
      waiting_.insert_or_assign(n.identifier, n);
      return;
    }
    sd_bus_message* m = nullptr;
    int r = sd_bus_message_new_method_call(bus, &m, kService, kPath, kInterface, "Notify");
    const auto known = ids_.find(n.identifier);
    const std::uint32_t replaces = known != ids_.end() ? known->second : 0;
    // The "default" action is a click on the notification's body.
    if (r >= 0)
      r = sd_bus_message_append(m, "susssas", "Quillmark", replaces, kDesktopEntry, n.title.c_str(),
                                n.body.c_str(), 2, "default", "Quillmark");
    if (r >= 0)
      r = sd_bus_message_append(m, "a{sv}", 2, "desktop-entry", "s", kDesktopEntry, "urgency", "y",
                                static_cast<std::uint8_t>(1));
    if (r >= 0) r = sd_bus_message_append(m, "i", -1);
    if (r >= 0)
      r = callAsync(bus, m, &FreedesktopNotificationCenter::onNotified,
                    std::make_unique<NotifyContext>(NotifyContext{this, n.identifier}));
    sd_bus_message_unref(m);
    if (r >= 0) inFlight_.insert(n.identifier);
    if (r < 0) {
      Log::debug("Notifications: cannot send " + n.identifier + ": " + std::strerror(-r));
    }
  }

  static int onNotified(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    const auto* ctx = static_cast<const NotifyContext*>(userdata);
    std::uint32_t id = 0;
    if (const sd_bus_error* error = sd_bus_message_get_error(reply)) {
      Log::debug("Notifications: " + ctx->identifier + " not shown: " + errorText(error, -EIO));
    } else if (sd_bus_message_read(reply, "u", &id) >= 0) {
      ctx->self->ids_[ctx->identifier] = id;
    }
    FreedesktopNotificationCenter& self = *ctx->self;
    self.inFlight_.erase(ctx->identifier);
    if (auto next = self.waiting_.extract(ctx->identifier))
      self.notify(sd_bus_message_get_bus(reply), next.mapped());
    return 0;
  }

  static int onActionInvoked(sd_bus_message* message, void* userdata, sd_bus_error*) {
    auto* self = static_cast<FreedesktopNotificationCenter*>(userdata);
    std::uint32_t id = 0;
    const char* key = nullptr;
    if (sd_bus_message_read(message, "us", &id, &key) < 0 || std::strcmp(key, "default") != 0) return 0;
    // Signals may be broadcast: only ids this program got back count.
    bool ours = false;
    for (const auto& entry : self->ids_) ours = ours || entry.second == id;
    if (!ours) return 0;
    std::weak_ptr<MainState> weak = self->shared_;
    self->loop_.post([weak] {
      auto state = weak.lock();
      if (state && state->onClick) state->onClick();
    });
    return 0;
  }

  sd_bus* connect() {
    sd_bus* bus = nullptr;
    const int r = sd_bus_open_user(&bus);
    if (r < 0) {
      connectError_ = std::strerror(-r);
      Log::debug("Notifications: cannot connect to the session bus: " + connectError_);
      return nullptr;
    }
    sd_bus_match_signal(bus, nullptr, nullptr, kPath, kInterface, "ActionInvoked",
                        &FreedesktopNotificationCenter::onActionInvoked, this);
    return bus;
  }

  [[nodiscard]] bool takeJobs(std::deque<Job>& out) {
    std::lock_guard lock(mutex_);
    out.swap(jobs_);
    return !stopping_;
  }

  void run() {
    sd_bus* bus = nullptr;  // connected when the first job arrives
    std::deque<Job> jobs;
    for (;;) {
      std::uint64_t drained = 0;
      (void)!read(wakeFd_, &drained, sizeof drained);
      const bool keepGoing = takeJobs(jobs);
      // A lost bus (the session bus restarted) is connected again when there is work for it.
      if (!bus && keepGoing && !jobs.empty()) bus = connect();
      for (auto& job : jobs) job(bus);
      jobs.clear();
      if (!keepGoing) break;
      if (bus) {
        int r;
        while ((r = sd_bus_process(bus, nullptr)) > 0) {
        }
        if (r < 0) {
          Log::debug(std::string("Notifications: session bus connection lost: ") + std::strerror(-r));
          connectError_ = "connection lost";
          bus = sd_bus_flush_close_unref(bus);
          // Pending replies died with the connection, and the ids belong to the old server.
          inFlight_.clear();
          waiting_.clear();
          ids_.clear();
        }
      }
      pollfd fds[2] = {{wakeFd_, POLLIN, 0}, {-1, 0, 0}};
      int timeoutMs = -1;
      if (bus) {
        fds[1].fd = sd_bus_get_fd(bus);
        fds[1].events = static_cast<short>(sd_bus_get_events(bus));
        std::uint64_t until = 0;
        if (sd_bus_get_timeout(bus, &until) >= 0 && until != UINT64_MAX) {
          timespec now{};
          clock_gettime(CLOCK_MONOTONIC, &now);
          const std::uint64_t nowUsec =
              static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 + now.tv_nsec / 1000;
          timeoutMs = until > nowUsec ? static_cast<int>((until - nowUsec + 999) / 1000) : 0;
        }
      }
      if (poll(fds, bus ? 2 : 1, timeoutMs) < 0 && errno != EINTR) break;
    }
    if (bus) sd_bus_flush_close_unref(bus);
  }

  MainLoop& loop_;
  std::shared_ptr<MainState> shared_;
  int wakeFd_;
  std::thread thread_;
  std::mutex mutex_;  // guards jobs_ and stopping_
  std::deque<Job> jobs_;
  bool stopping_ = false;
  // Bus thread only.
  std::map<std::string, std::uint32_t> ids_;
  std::set<std::string> inFlight_;
  std::map<std::string, Notification> waiting_;
  std::string connectError_;
};

}  // namespace

std::unique_ptr<NotificationCenter> NotificationCenter::makePlatform(MainLoop& loop) {
  return std::make_unique<FreedesktopNotificationCenter>(loop);
}

}  // namespace quillmark
