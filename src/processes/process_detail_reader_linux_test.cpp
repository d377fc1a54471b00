#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>

#include "base/paths.h"
#include "processes/process_detail_reader.h"
#include "processes/testing/child_group.h"

namespace quillmark {
namespace {

TEST(ProcessDetailReaderLinuxTest, ReadsARealProcessAndNothingForAGoneOne) {
  const auto self = ProcessDetailReader::read(::getpid(), "tests");
  ASSERT_TRUE(self);
  EXPECT_EQ(self->name, "tests");
  EXPECT_EQ(self->path, executablePath());
  EXPECT_EQ(self->parentPid, ::getppid());
  EXPECT_GE(self->threadCount, 1);
  EXPECT_GT(self->residentBytes, 0u);
  EXPECT_GT(self->virtualBytes, self->residentBytes);
  ASSERT_TRUE(self->startDate);
  // btime is whole seconds, so the start can read up to a second early.
  EXPECT_LE(*self->startDate, static_cast<double>(std::time(nullptr)) + 1);
  EXPECT_GT(*self->startDate, static_cast<double>(std::time(nullptr)) - 3600);

  // A zombie still has a stat file but no executable: its path reads "—".
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  ASSERT_TRUE(testing::waitForStates({child}, [](char state) { return state == 'Z'; }));
  const auto zombie = ProcessDetailReader::read(child, "zombie");
  ASSERT_TRUE(zombie);
  EXPECT_EQ(zombie->path, ProcessDetailReader::kNoPath);
  EXPECT_FALSE(ProcessDetailReader::startTime(child)) << "a zombie has no start to guard";
  ::waitpid(child, nullptr, 0);
  EXPECT_FALSE(ProcessDetailReader::read(child, "gone"));
  EXPECT_FALSE(ProcessDetailReader::read(0, "none"));
}

}  // namespace
}  // namespace quillmark
