#include "base/log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
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

TEST_F(LogFileTest, LinesCarryTheTimeOfDayAndTheFolderIsCreatedEvenAfterADeletion) {
  LogFile log(path_, false);
  log.debug("one");
  fs::remove_all(dir_ + "/state");
  log.debug("Launch at login enabled successfully; status=enabled");
  const auto written = lines();
  ASSERT_EQ(written.size(), 1u);
  EXPECT_TRUE(std::regex_match(
      written[0],
      std::regex(R"(\[\d\d:\d\d:\d\d\.\d\d\d\] Launch at login enabled successfully; status=enabled)")))
      << written[0];
}

// Past 2 MiB at a launch's first line the log replaces the older generation; at exactly 2 MiB, or
// grown past it during the run, it is kept until the next launch.
TEST_F(LogFileTest, AnOversizedLogRotatesOnlyBeforeALaunchsFirstLine) {
  ASSERT_TRUE(makeDirectories(parentDirectory(path_)));
  const std::string old = LogFile::oldLogPath(path_);
  EXPECT_EQ(old, dir_ + "/state/quillmark/Quillmark.old.log");
  ASSERT_TRUE(writeFileAtomically(path_, std::string(2 * 1024 * 1024, 'x')));
  {
    LogFile log(path_, false);
    log.debug("appended");
    ASSERT_TRUE(writeFileAtomically(path_, std::string(3 * 1024 * 1024, 'x')));
    log.debug("still here");
    EXPECT_FALSE(fs::exists(old));
  }
  ASSERT_TRUE(writeFileAtomically(old, "older generation\n"));
  LogFile log(path_, false);
  log.debug("first");
  log.debug("second");
  EXPECT_GT(fs::file_size(old), 3u * 1024 * 1024);  // the older generation is replaced
  ASSERT_EQ(lines().size(), 2u);
  EXPECT_NE(lines()[0].find("] first"), std::string::npos);
}

TEST_F(LogFileTest, VerboseMessagesAreNeverBuiltWhenVerboseIsOff) {
  int built = 0;
  const auto message = [&built] {
    ++built;
    return std::string("tick #1");
  };
  LogFile(path_, false).verbose(message);
  EXPECT_EQ(built, 0);
  EXPECT_TRUE(lines().empty());
  LogFile(path_, true).verbose(message);
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

TEST_F(LogFileTest, APathThatIsNotARegularFileLosesLinesWithoutWaiting) {
  ASSERT_TRUE(makeDirectories(parentDirectory(path_)));
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  LogFile log(path_, false);
  log.debug("nobody reads this");  // no reader: opening must not wait for one
  const int reader = open(path_.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  log.debug("a reader may not get this");  // a reader: a full FIFO would block the writer
  char buffer[64];
  EXPECT_LE(read(reader, buffer, sizeof buffer), 0);
  close(reader);

  // A symbolic link to a regular file (a log kept elsewhere) is followed.
  fs::remove(path_);
  const std::string target = dir_ + "/elsewhere.log";
  fs::create_symlink(target, path_);
  log.debug("through the link");
  EXPECT_NE(readWholeFile(target).value_or("").find("] through the link"), std::string::npos);
}

TEST_F(LogFileTest, UnwritableLocationLosesTheLineQuietly) {
  ASSERT_TRUE(writeFileAtomically(dir_ + "/blocker", "x"));
  LogFile log(dir_ + "/blocker/Quillmark.log", true);
  log.debug("lost");  // must neither throw nor crash
  EXPECT_FALSE(fs::exists(dir_ + "/blocker/Quillmark.log"));
}

}  // namespace
}  // namespace quillmark
