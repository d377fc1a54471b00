#include "processes/cgroup_parsers.h"

#include <gtest/gtest.h>

namespace quillmark::procfs {
namespace {

TEST(CgroupParsers, ReadCgroupFacts) {
  EXPECT_EQ(parseUnifiedCgroup("12:pids:/x\n0::/user.slice/app.slice/a.scope\n"),
            "/user.slice/app.slice/a.scope");
  EXPECT_FALSE(parseUnifiedCgroup("1:name=systemd:/\n"));
  EXPECT_EQ(parseFrozenEvent("populated 1\nfrozen 1\n"), true);
  EXPECT_EQ(parseFrozenEvent("frozen 0\npopulated 1\n"), false);
  EXPECT_FALSE(parseFrozenEvent("populated 1\nunfrozen 1\n"));
  EXPECT_EQ(
      parseCgroup2Mount("30 1 0:26 / /sys/fs/cgroup/cpu rw - cgroup cgroup rw,cpu\n"
                        "35 1 0:31 / /sys/fs/cgroup/unified rw,relatime shared:9 - cgroup2 cgroup2 rw\n"),
      "/sys/fs/cgroup/unified");
  EXPECT_FALSE(parseCgroup2Mount("30 1 0:26 / /sys/fs/cgroup rw - tmpfs tmpfs rw\n"));

  const auto scope =
      parseAppUnit("/user.slice/user@1000.service/app.slice/app-gnome-org.gnome.Terminal-4213.scope");
  ASSERT_TRUE(scope);
  EXPECT_EQ(scope->unit, "app-gnome-org.gnome.Terminal-4213.scope");
  EXPECT_EQ(scope->appId, "org.gnome.Terminal");
  EXPECT_EQ(parseAppUnit("/a/app-kde\\x2dcode-firefox\\x2desr@12ab.service")->appId, "firefox-esr");
  EXPECT_EQ(parseAppUnit("/a/app-firefox\\x2desr@12ab.service")->appId, "firefox-esr");
  EXPECT_EQ(parseAppUnit("/a/app-flatpak-org.mozilla.firefox-12345.scope")->appId, "org.mozilla.firefox");
  EXPECT_FALSE(parseAppUnit("/a/session-2.scope"));
  EXPECT_FALSE(parseAppUnit("/a/app-1234.scope"));
}

}  // namespace
}  // namespace quillmark::procfs
