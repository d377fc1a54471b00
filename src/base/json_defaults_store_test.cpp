#include "base/json_defaults_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
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

TEST_F(JsonDefaultsStoreTest, ValuesSurviveReopeningWithTheirKinds) {
  {
    JsonDefaultsStore store(path_);
    store.set("refreshInterval", 5.0);
    store.set("showNetSpeed", true);
    store.set("menuBarStyle", std::string("text"));
    store.set("hiddenModules", std::vector<std::string>{"gpu", "power"});
    EXPECT_TRUE(store.lastWriteSucceeded());
  }
  JsonDefaultsStore reopened(path_);
  EXPECT_EQ(reopened.getDouble("refreshInterval"), 5.0);
  EXPECT_EQ(reopened.getBool("showNetSpeed"), true);
  EXPECT_EQ(reopened.getString("menuBarStyle"), "text");
  EXPECT_EQ(reopened.getStringArray("hiddenModules"), (std::vector<std::string>{"gpu", "power"}));
  // The kind is kept: a bool is not readable as a string or a double.
  EXPECT_FALSE(reopened.getString("showNetSpeed"));
  EXPECT_FALSE(reopened.getDouble("showNetSpeed"));
  EXPECT_FALSE(reopened.get("missing"));
}

TEST_F(JsonDefaultsStoreTest, RemovedKeysStayRemovedAndFileIsPrivate) {
  {
    JsonDefaultsStore store(path_);
    store.set("verboseLog", true);
    store.remove("verboseLog");
  }
  EXPECT_FALSE(JsonDefaultsStore(path_).get("verboseLog"));
  struct stat info {};
  ASSERT_EQ(stat(path_.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(JsonDefaultsStoreTest, DamagedFileIsSetAsideAndNeverOverwritten) {
  ASSERT_TRUE(writeFileAtomically(path_, "{\"refreshInterval\": 5, broken"));
  JsonDefaultsStore store(path_);
  EXPECT_FALSE(store.get("refreshInterval"));
  ASSERT_FALSE(store.setAsidePath().empty());
  EXPECT_EQ(readWholeFile(store.setAsidePath()), "{\"refreshInterval\": 5, broken");

  store.set("showNetSpeed", true);
  // The user's damaged copy is still there after the store wrote a fresh file.
  EXPECT_EQ(readWholeFile(store.setAsidePath()), "{\"refreshInterval\": 5, broken");
  EXPECT_EQ(JsonDefaultsStore(path_).getBool("showNetSpeed"), true);
}

TEST_F(JsonDefaultsStoreTest, NonObjectDocumentsAndOddValuesFallBackSafely) {
  ASSERT_TRUE(writeFileAtomically(path_, "[1, 2, 3]"));
  EXPECT_FALSE(JsonDefaultsStore(path_).setAsidePath().empty());

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
