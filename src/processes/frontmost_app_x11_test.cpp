#include "processes/frontmost_app_x11.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

// Last: Xlib defines None, Bool and Status as macros, which must not reach GoogleTest's headers.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

extern char** environ;

namespace quillmark {
namespace {

// A private Xvfb (it picks a free display and names it on -displayfd), a client process that owns
// one window, and the test in the role of the window manager setting _NET_ACTIVE_WINDOW.
class X11FrontmostTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (::access("/usr/bin/Xvfb", X_OK) != 0) GTEST_SKIP() << "Xvfb is not installed (package xvfb)";
    ::unsetenv("WAYLAND_DISPLAY");
    ::unsetenv("XDG_SESSION_TYPE");
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ready[1], 3);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    char* argv[] = {const_cast<char*>("Xvfb"),      const_cast<char*>("-displayfd"), const_cast<char*>("3"),
                    const_cast<char*>("-nolisten"), const_cast<char*>("tcp"),        nullptr};
    ASSERT_EQ(::posix_spawn(&server_, "/usr/bin/Xvfb", &actions, nullptr, argv, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ready[1]);
    FILE* reply = ::fdopen(ready[0], "r");
    int number = -1;
    const bool started = std::fscanf(reply, "%d", &number) == 1;
    std::fclose(reply);
    ASSERT_TRUE(started) << "Xvfb did not start";
    display_ = ":" + std::to_string(number);
  }
  void TearDown() override {
    if (client_ > 0) {
      ::kill(client_, SIGKILL);
      ::waitpid(client_, nullptr, 0);
    }
    if (server_ > 0) {
      ::kill(server_, SIGTERM);
      ::waitpid(server_, nullptr, 0);
    }
  }

  // A child process that connects, creates a window and reports its id.
  Window startClient() {
    int channel[2];
    if (::pipe(channel) != 0) return 0;
    client_ = ::fork();
    if (client_ == 0) {
      ::Display* display = XOpenDisplay(display_.c_str());
      Window window =
          display ? XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 10, 10, 0, 0, 0) : 0;
      if (display) XSync(display, False);
      (void)!::write(channel[1], &window, sizeof window);
      for (;;) ::pause();
    }
    ::close(channel[1]);
    Window window = 0;
    if (::read(channel[0], &window, sizeof window) != sizeof window) window = 0;
    ::close(channel[0]);
    return window;
  }

  void setActive(::Display* display, Window window) {
    const Atom active = XInternAtom(display, "_NET_ACTIVE_WINDOW", False);
    XChangeProperty(display, DefaultRootWindow(display), active, XA_WINDOW, 32, PropModeReplace,
                    reinterpret_cast<unsigned char*>(&window), 1);
    XSync(display, False);
  }

  pid_t server_ = -1;
  pid_t client_ = -1;
  std::string display_;
};

TEST_F(X11FrontmostTest, ReportsThePidOfTheActiveWindowsClient) {
  const Window window = startClient();
  ASSERT_NE(window, 0u);
  X11FrontmostApp source(display_);
  ASSERT_TRUE(source.connected());
  EXPECT_EQ(source.frontmostPid(), std::nullopt) << "no window manager has named a window yet";

  ::Display* wm = XOpenDisplay(display_.c_str());
  ASSERT_NE(wm, nullptr);
  setActive(wm, window);
  EXPECT_EQ(source.frontmostPid(), client_);
  source.activate(client_);  // a client message to the root; must not disturb the connection

  // The window's client went away: a stale id gives no answer instead of an X error.
  ::kill(client_, SIGKILL);
  ::waitpid(client_, nullptr, 0);
  client_ = -1;
  XSync(wm, False);
  EXPECT_EQ(source.frontmostPid(), std::nullopt);
  XCloseDisplay(wm);
}

}  // namespace
}  // namespace quillmark
