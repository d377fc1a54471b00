#include "app/log.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <regex>
#include <sstream>
#include <thread>
#include <vector>

#include "base/file_util.h"

namespace quillmark {
namespace {

namespace fs = std::filesystem;

class LogFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/qm-log-XXXXXX";
    dir_ = mkdtemp(pattern);
    path_ = dir_ + "/state/quillmark/Quillmark.log";
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::vector<std::string> lines() const {
    std::vector<std::string> out;
    std::istringstream in(readWholeFile(path_).value_or(""));
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
  }

  std::string dir_;
  std::string path_;
};

TEST_F(LogFileTest, LinesCarryTheTimeOfDayAndTheFolderIsCreated) {
  LogFile log(path_, false);
  log.debug("Launch at login enabled successfully; status=enabled");
  const auto written = lines();
  ASSERT_EQ(written.size(), 1u);
  EXPECT_TRUE(std::regex_match(
      written[0],
      std::regex(R"(\[\d\d:\d\d:\d\d\.\d\d\d\] Launch at login enabled successfully; status=enabled)")))
      << written[0];
}

TEST_F(LogFileTest, OversizedLogRotatesOnceBeforeTheFirstLine) {
  ASSERT_TRUE(makeDirectories(parentDirectory(path_)));
  const std::string old = LogFile::oldLogPath(path_);
  EXPECT_EQ(old, dir_ + "/state/quillmark/Quillmark.old.log");
  ASSERT_TRUE(writeFileAtomically(old, "older generation\n"));
  ASSERT_TRUE(writeFileAtomically(path_, std::string(3 * 1024 * 1024, 'x')));

  LogFile log(path_, false);
  log.debug("first");
  log.debug("second");
  EXPECT_EQ(fs::file_size(old), 3u * 1024 * 1024);  // replaced the older generation
  ASSERT_EQ(lines().size(), 2u);
  EXPECT_NE(lines()[0].find("] first"), std::string::npos);
}

TEST_F(LogFileTest, ExactlyTwoMebibytesIsNotRotated) {
  ASSERT_TRUE(writeFileAtomically(path_, std::string(2 * 1024 * 1024, 'x')));
  LogFile log(path_, false);
  log.debug("appended");
  EXPECT_FALSE(fs::exists(LogFile::oldLogPath(path_)));
  EXPECT_GT(fs::file_size(path_), 2u * 1024 * 1024);
}

TEST_F(LogFileTest, RotationIsCheckedOnlyAtTheFirstLineOfALaunch) {
  LogFile log(path_, false);
  log.debug("small");
  // Grows past the limit during the run: kept until the next launch.
  ASSERT_TRUE(writeFileAtomically(path_, std::string(3 * 1024 * 1024, 'x')));
  log.debug("still here");
  EXPECT_FALSE(fs::exists(LogFile::oldLogPath(path_)));
}

TEST_F(LogFileTest, DeletedLogIsRecreatedByTheNextLine) {
  LogFile log(path_, false);
  log.debug("one");
  fs::remove_all(dir_ + "/state");
  log.debug("two");
  ASSERT_EQ(lines().size(), 1u);
  EXPECT_NE(lines()[0].find("] two"), std::string::npos);
}

TEST_F(LogFileTest, VerboseMessagesAreNeverBuiltWhenVerboseIsOff) {
  LogFile quiet(path_, false);
  int built = 0;
  quiet.verbose([&] {
    ++built;
    return std::string("tick #1");
  });
  EXPECT_EQ(built, 0);
  EXPECT_TRUE(lines().empty());

  LogFile loud(path_, true);
  loud.verbose([&] {
    ++built;
    return std::string("tick #1");
  });
  EXPECT_EQ(built, 1);
  ASSERT_EQ(lines().size(), 1u);
}

TEST_F(LogFileTest, LinesFromSeveralThreadsNeverTear) {
  LogFile log(path_, false);
  const std::string payload(900, 'p');
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&log, &payload, t] {
      for (int i = 0; i < 200; ++i) log.debug("thread " + std::to_string(t) + " " + payload);
    });
  }
  for (auto& thread : threads) thread.join();
  const auto written = lines();
  ASSERT_EQ(written.size(), 800u);
  const std::regex whole(R"(\[\d\d:\d\d:\d\d\.\d\d\d\] thread [0-3] p{900})");
  for (const auto& line : written) ASSERT_TRUE(std::regex_match(line, whole)) << line.substr(0, 80);
}

TEST_F(LogFileTest, UnwritableLocationLosesTheLineQuietly) {
  ASSERT_TRUE(writeFileAtomically(dir_ + "/blocker", "x"));
  LogFile log(dir_ + "/blocker/Quillmark.log", true);
  log.debug("lost");  // must neither throw nor crash
  EXPECT_FALSE(fs::exists(dir_ + "/blocker/Quillmark.log"));
}

}  // namespace
}  // namespace quillmark
