#include "settings/launch_at_login.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/file_util.h"
#include "base/paths.h"
#include "settings/testing/fakes.h"
#include "settings/testing/temp_environment.h"

namespace quillmark {
namespace {

using ::testing::HasSubstr;

std::string log() { return readWholeFile(logFilePath()).value_or(""); }

class LaunchAtLoginTest : public ::testing::Test {
 protected:
  testing::FakeLoginItems items;
  LaunchAtLogin launch{items};
};

TEST_F(LaunchAtLoginTest, RequestThatAlreadyHoldsMakesNoCall) {
  items.current = LoginItemService::kEnabled;
  EXPECT_TRUE(launch.set(true));
  for (const long status : {LoginItemService::kRequiresApproval, LoginItemService::kNotFound, 0L}) {
    items.current = status;
    EXPECT_TRUE(launch.set(false));
  }
  EXPECT_EQ(items.registerCalls + items.unregisterCalls, 0);
}

TEST_F(LaunchAtLoginTest, SuccessfulChangesReportTrueAndLogTheStatus) {
  EXPECT_TRUE(launch.set(true));
  EXPECT_THAT(log(), HasSubstr("Launch at login enabled successfully; status=enabled"));
  EXPECT_TRUE(launch.set(false));
  EXPECT_THAT(log(), HasSubstr("Launch at login disabled successfully; status=notRegistered"));
  EXPECT_EQ(items.registerCalls, 1);
  EXPECT_EQ(items.unregisterCalls, 1);
  // Registered but waiting for the user's approval is not a success.
  items.statusAfterRegister = LoginItemService::kRequiresApproval;
  EXPECT_FALSE(launch.set(true));
  EXPECT_THAT(log(), HasSubstr("Launch at login enabled successfully; status=requiresApproval"));
  EXPECT_TRUE(launch.requiresApproval());
}

TEST_F(LaunchAtLoginTest, ServiceErrorsAreLoggedAndReportFalse) {
  items.registerError = "Operation not permitted (test 1)";
  EXPECT_FALSE(launch.set(true));
  EXPECT_THAT(log(), HasSubstr("Failed to enable launch at login: Operation not permitted (test 1)"));
  items.current = LoginItemService::kEnabled;
  items.unregisterError = "Busy (test 2)";
  EXPECT_FALSE(launch.set(false));
  EXPECT_THAT(log(), HasSubstr("Failed to disable launch at login: Busy (test 2)"));
}

}  // namespace
}  // namespace quillmark
