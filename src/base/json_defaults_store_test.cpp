#include "base/json_defaults_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "base/file_util.h"

namespace quillmark {
namespace {

namespace fs = std::filesystem;

class JsonDefaultsStoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/qm-defaults-XXXXXX";
    dir_ = mkdtemp(pattern);
    path_ = dir_ + "/quillmark/settings.json";
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string dir_;
  std::string path_;
};

TEST_F(JsonDefaultsStoreTest, ValuesSurviveReopeningWithTheirKindsInAPrivateFile) {
  {
    JsonDefaultsStore store(path_);
    store.set("refreshInterval", 5.0);
    store.set("showNetSpeed", true);
    store.set("menuBarStyle", std::string("text"));
    store.set("hiddenModules", std::vector<std::string>{"gpu", "power"});
    store.set("verboseLog", true);
    store.remove("verboseLog");
    EXPECT_TRUE(store.lastWriteSucceeded());
  }
  JsonDefaultsStore reopened(path_);
  EXPECT_EQ(reopened.getDouble("refreshInterval"), 5.0);
  EXPECT_EQ(reopened.getBool("showNetSpeed"), true);
  EXPECT_EQ(reopened.getString("menuBarStyle"), "text");
  EXPECT_EQ(reopened.getStringArray("hiddenModules"), (std::vector<std::string>{"gpu", "power"}));
  EXPECT_FALSE(reopened.get("verboseLog"));
  // The kind is kept: a bool is not readable as a string or a double.
  EXPECT_FALSE(reopened.getString("showNetSpeed"));
  EXPECT_FALSE(reopened.getDouble("showNetSpeed"));
  struct stat info {};
  ASSERT_EQ(stat(path_.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);
}

// A one-shot run reads the settings while the running program rewrites them: every read sees a
// whole file, so nothing is ever judged damaged or moved aside.
TEST_F(JsonDefaultsStoreTest, ReadersBesideAWriterNeverSeeADamagedFile) {
  JsonDefaultsStore(path_).set("refreshInterval", 1.0);
  const pid_t writer = fork();
  ASSERT_GE(writer, 0);
  if (writer == 0) {
    JsonDefaultsStore store(path_);
    for (int i = 0; i < 300; ++i) store.set("k" + std::to_string(i % 40), std::string(i % 300, 'x'));
    _exit(0);
  }
  int damaged = 0;
  for (int status = 0; waitpid(writer, &status, WNOHANG) == 0;) {
    const JsonDefaultsStore reader(path_);
    damaged += !reader.loadProblems().empty();
  }
  EXPECT_EQ(damaged, 0);
  for (const auto& entry : fs::directory_iterator(parentDirectory(path_)))
    EXPECT_EQ(entry.path().filename(), "settings.json");
}

TEST_F(JsonDefaultsStoreTest, AFileReplacedSinceItWasJudgedDamagedStaysInPlace) {
  ASSERT_TRUE(writeFileAtomically(path_, "{broken"));
  const auto judged = readRegularFile(path_, 100).identity;
  ASSERT_TRUE(judged);
  ASSERT_TRUE(writeFileAtomically(path_, "{}"));  // another instance saved meanwhile
  errno = 0;
  EXPECT_FALSE(moveAsideWithoutReplacing(path_, path_ + ".damaged", judged));
  EXPECT_EQ(errno, ESTALE);
  EXPECT_EQ(readWholeFile(path_), "{}");
  EXPECT_FALSE(fs::exists(path_ + ".damaged"));
  EXPECT_EQ(moveAsideWithoutReplacing(path_, path_ + ".damaged", readRegularFile(path_, 100).identity),
            path_ + ".damaged");
}

TEST_F(JsonDefaultsStoreTest, DamagedFilesAreSetAsideBesideEarlierCopiesAndSaid) {
  // Copies from earlier launches in this and the next seconds must all survive.
  const std::string base = path_ + ".damaged-" + std::to_string(std::time(nullptr));
  for (const std::string& earlier : {base, base + "-2", base + "-3"}) {
    ASSERT_TRUE(writeFileAtomically(earlier, "earlier copy"));
  }
  const std::string broken = "{\"refreshInterval\": 5, broken";
  ASSERT_TRUE(writeFileAtomically(path_, broken));
  JsonDefaultsStore store(path_);
  EXPECT_FALSE(store.get("refreshInterval"));
  ASSERT_FALSE(store.setAsidePath().empty());
  EXPECT_EQ(readWholeFile(store.setAsidePath()), broken);
  for (const std::string& earlier : {base, base + "-2", base + "-3"}) {
    EXPECT_EQ(readWholeFile(earlier), "earlier copy") << earlier;
  }
  ASSERT_EQ(store.loadProblems().size(), 1u);
  EXPECT_NE(store.loadProblems()[0].find("not valid JSON"), std::string::npos);
  EXPECT_NE(store.loadProblems()[0].find("copy kept at " + store.setAsidePath()), std::string::npos);

  store.set("showNetSpeed", true);
  EXPECT_EQ(readWholeFile(store.setAsidePath()), broken);
  EXPECT_EQ(JsonDefaultsStore(path_).getBool("showNetSpeed"), true);
}

TEST_F(JsonDefaultsStoreTest, OnlyASmallShallowRegularFileIsRead) {
  ASSERT_TRUE(makeDirectories(parentDirectory(path_)));
  // Not regular: ignored (never moved), and opening never waits for a writer.
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  JsonDefaultsStore fifo(path_);
  ASSERT_EQ(fifo.loadProblems().size(), 1u);
  EXPECT_NE(fifo.loadProblems()[0].find("not a regular file"), std::string::npos);
  EXPECT_TRUE(fifo.setAsidePath().empty());
  fifo.set("showNetSpeed", true);  // kept in memory; the FIFO is not replaced
  EXPECT_FALSE(fifo.lastWriteSucceeded());
  EXPECT_TRUE(fs::is_fifo(path_));
  fs::remove(path_);
  fs::create_symlink("/dev/zero", path_);
  EXPECT_NE(JsonDefaultsStore(path_).loadProblems().at(0).find("not a regular file"), std::string::npos);
  fs::remove(path_);

  const std::string deep = "{\"a\": " + std::string(JsonDefaultsStore::kMaxDepth + 1, '[') +
                           std::string(JsonDefaultsStore::kMaxDepth + 1, ']') + "}";
  const std::string big = "{\"a\": \"" + std::string(JsonDefaultsStore::kMaxBytes, 'x') + "\"}";
  for (const auto& [text, why] : {std::pair{deep, "nested too deeply"}, std::pair{big, "larger than 1 MiB"},
                                  std::pair{std::string("[1, 2, 3]"), "not a JSON object"}}) {
    ASSERT_TRUE(writeFileAtomically(path_, text));
    JsonDefaultsStore store(path_);
    EXPECT_FALSE(store.get("a")) << why;
    EXPECT_NE(store.loadProblems().at(0).find(why), std::string::npos) << store.loadProblems()[0];
    EXPECT_EQ(readWholeFile(store.setAsidePath()), text);
  }
}

TEST_F(JsonDefaultsStoreTest, ALinkedSettingsFileIsReadAndWrittenThroughTheLink) {
  const std::string target = dir_ + "/dotfiles/quillmark.json";
  ASSERT_TRUE(writeFileAtomically(target, R"({"refreshInterval": 5})"));
  ASSERT_TRUE(makeDirectories(parentDirectory(path_)));
  fs::create_symlink(target, path_);
  JsonDefaultsStore store(path_);
  EXPECT_EQ(store.getDouble("refreshInterval"), 5.0);
  store.set("refreshInterval", 1.0);
  EXPECT_TRUE(fs::is_symlink(path_));
  EXPECT_EQ(JsonDefaultsStore(target).getDouble("refreshInterval"), 1.0);
}

TEST_F(JsonDefaultsStoreTest, OddValuesFallBackSafely) {
  ASSERT_TRUE(
      writeFileAtomically(path_, R"({"a": null, "b": {"x": 1}, "c": [1, "x"], "d": 7, "keep": {"y": 2}})"));
  JsonDefaultsStore store(path_);
  EXPECT_TRUE(store.setAsidePath().empty());
  EXPECT_FALSE(store.get("a"));
  EXPECT_FALSE(store.get("b"));
  EXPECT_FALSE(store.get("c"));          // mixed arrays are not string arrays
  EXPECT_EQ(store.getDouble("d"), 7.0);  // integers read as doubles
  store.set("e", std::numeric_limits<double>::infinity());
  EXPECT_FALSE(store.getDouble("e"));  // not representable: falls back, never throws
  // Entries the program does not understand are preserved on rewrite.
  EXPECT_NE(readWholeFile(path_)->find("\"keep\""), std::string::npos);
}

TEST_F(JsonDefaultsStoreTest, UnwritableLocationKeepsValuesInMemory) {
  // A file where the folder should be: the write fails, the value is still served.
  ASSERT_TRUE(writeFileAtomically(dir_ + "/blocker", "x"));
  JsonDefaultsStore store(dir_ + "/blocker/settings.json");
  store.set("refreshInterval", 1.0);
  EXPECT_FALSE(store.lastWriteSucceeded());
  EXPECT_EQ(store.getDouble("refreshInterval"), 1.0);
}

}  // namespace
}  // namespace quillmark
