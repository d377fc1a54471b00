#include "processes/frontmost_app_x11.h"

// Linked directly rather than loaded at run time: libX11 and libXRes are part of every X11
// desktop, the build checks every call's signature, and a missing display is handled below.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XRes.h>

#include <cstdlib>
#include <cstring>

#include "base/log.h"

namespace quillmark {
namespace {

// Xlib reports errors (a window that closed a moment ago: BadWindow) through one process-wide
// handler whose default exits the program. Each request that may fail runs inside a trap that
// swaps in a handler that only notes the error, then puts the previous one (GTK's, perhaps) back.
int trappedErrors = 0;
int noteError(::Display*, XErrorEvent*) {
  ++trappedErrors;
  return 0;
}

template <class Request>
bool trapped(::Display* display, Request&& request) {
  trappedErrors = 0;
  auto* previous = XSetErrorHandler(noteError);
  request();
  XSync(display, False);
  XSetErrorHandler(previous);
  return trappedErrors == 0;
}

}  // namespace

bool X11FrontmostApp::isWaylandSession() {
  const char* type = std::getenv("XDG_SESSION_TYPE");
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  return (type && std::strcmp(type, "wayland") == 0) || (wayland && *wayland);
}

X11FrontmostApp::X11FrontmostApp(const std::string& displayName) {
  if (isWaylandSession()) {
    Log::debug("Wayland session: watch of the front application is off");
    return;
  }
  display_ = XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str());
  if (!display_) return;
  int event = 0;
  int error = 0;
  if (!XResQueryExtension(display_, &event, &error)) {
    Log::debug("X server without the X-Resource extension: watch of the front application is off");
    XCloseDisplay(display_);
    display_ = nullptr;
    return;
  }
  activeAtom_ = XInternAtom(display_, "_NET_ACTIVE_WINDOW", False);
}

X11FrontmostApp::~X11FrontmostApp() {
  if (display_) XCloseDisplay(display_);
}

std::optional<std::int32_t> X11FrontmostApp::frontmostPid() {
  if (!display_) return std::nullopt;
  Window window = 0;
  trapped(display_, [&] {
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display_, DefaultRootWindow(display_), activeAtom_, 0, 1, False, XA_WINDOW, &type,
                           &format, &count, &after, &data) == Success &&
        data && type == XA_WINDOW && format == 32 && count == 1)
      window = *reinterpret_cast<Window*>(data);
    if (data) XFree(data);
  });
  if (window == 0) return std::nullopt;

  std::optional<std::int32_t> pid;
  trapped(display_, [&] {
    XResClientIdSpec wanted{window, XRES_CLIENT_ID_PID_MASK};
    long count = 0;
    XResClientIdValue* values = nullptr;
    if (XResQueryClientIds(display_, 1, &wanted, &count, &values) != Success) return;
    for (long i = 0; i < count && !pid; ++i)
      if (const pid_t found = XResGetClientPid(&values[i]); found > 0) pid = found;
    XResClientIdsDestroy(count, values);
  });
  if (pid) {
    lastWindow_ = window;
    lastPid_ = *pid;
  }
  return pid;
}

void X11FrontmostApp::activate(std::int32_t pid) {
  if (!display_ || pid != lastPid_ || lastWindow_ == 0) return;
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = lastWindow_;
  event.xclient.message_type = activeAtom_;
  event.xclient.format = 32;
  event.xclient.data.l[0] = 2;  // source: a pager or similar tool acting for the user
  event.xclient.data.l[1] = CurrentTime;
  trapped(display_, [&] {
    XSendEvent(display_, DefaultRootWindow(display_), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &event);
  });
}

std::unique_ptr<FrontmostAppSource> FrontmostAppSource::makePlatform() {
  return std::make_unique<X11FrontmostApp>();
}

}  // namespace quillmark
