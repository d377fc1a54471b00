#include "processes/paused_group.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmark {
namespace {

TEST(PausedGroupCodecTest, RoundTripsAndLoadsOlderRecords) {
  PausedGroup plain{700, 700, "Safari", 1700000000, 785000000.5, PauseMethod::signal, "", ""};
  PausedGroup frozen{800,
                     801,
                     "Mail \"β\"",
                     18446744073709551615u,
                     0,
                     PauseMethod::freezer,
                     "/user.slice/app-Mail-1.scope",
                     "boot"};
  const std::string text = PausedGroupCodec::encode({plain, frozen});
  EXPECT_EQ(text.rfind(R"([{"pgid":700,"leadPid":700,"name":"Safari","leadStart":1700000000,"at":)", 0), 0u);
  EXPECT_EQ(PausedGroupCodec::decode(text, 500), (std::vector<PausedGroup>{plain, frozen}));
  // Written before the method, cgroup and boot keys existed.
  EXPECT_EQ(
      PausedGroupCodec::decode(
          R"([{"pgid":700,"leadPid":700,"name":"Safari","leadStart":1700000000,"at":785000000.5}])", 500),
      std::vector<PausedGroup>{plain});
}

TEST(PausedGroupCodecTest, DropsHostileEntries) {
  const std::string good = R"({"pgid":700,"leadPid":700,"name":"a","leadStart":1,"at":0})";
  const char* bad[] = {
      R"({"pgid":1,"leadPid":700,"name":"a","leadStart":1,"at":0})",  // init's group
      R"({"pgid":700,"leadPid":0,"name":"a","leadStart":1,"at":0})",
      R"({"pgid":500,"leadPid":500,"name":"a","leadStart":1,"at":0})",    // our own group
      R"({"pgid":"700","leadPid":700,"name":"a","leadStart":1,"at":0})",  // wrong types
      R"({"pgid":700.5,"leadPid":700,"name":"a","leadStart":1,"at":0})",
      R"({"pgid":4294967298,"leadPid":700,"name":"a","leadStart":1,"at":0})",  // wraps to 2
      R"({"pgid":700,"leadPid":700,"name":"a","leadStart":-1,"at":0})",
      R"({"pgid":700,"leadPid":700,"name":7,"leadStart":1,"at":0})",
      R"({"pgid":700,"leadPid":700,"name":"a","leadStart":1})",
      R"({"pgid":700,"leadPid":700,"name":"a","leadStart":1,"at":0,"method":"thaw"})",
      R"({"pgid":700,"leadPid":700,"name":"a","leadStart":1,"at":0,"method":"freezer","cgroup":"/"})",
      R"({"pgid":700,"leadPid":700,"name":"a","leadStart":1,"at":0,"method":"freezer","cgroup":"/a/../../etc"})",
      R"([700])",
  };
  for (const char* entry : bad) {
    EXPECT_TRUE(PausedGroupCodec::decode(std::string("[") + entry + "]", 500).empty()) << entry;
    // A bad entry does not spoil its good neighbours, and a repeated group loads once.
    EXPECT_EQ(PausedGroupCodec::decode("[" + std::string(entry) + "," + good + "," + good + "]", 500).size(),
              1u)
        << entry;
  }
  for (const char* text : {"", "{}", "null", "[", "\"[]\"", "[{}]"})
    EXPECT_TRUE(PausedGroupCodec::decode(text, 500).empty()) << text;

  std::string huge = "[";
  for (std::size_t i = 0; i <= PausedGroupCodec::kMaxRecords; ++i) huge += (i ? "," : "") + good;
  EXPECT_TRUE(PausedGroupCodec::decode(huge + "]", 500).empty());
}

}  // namespace
}  // namespace quillmark
