// The URI a file manager is asked to show: reserved bytes, spaces and UTF-8 are percent-encoded,
// the folder separators are not.
#include "processes/file_manager.h"

#include <gtest/gtest.h>

namespace quillmark {
namespace {

TEST(FileManagerTest, FileUriPercentEncodesWhatIsNotUnreserved) {
  EXPECT_EQ(fileUri("/usr/bin/top"), "file:///usr/bin/top");
  EXPECT_EQ(fileUri("/opt/My App/bin/run-it_2.0~x"), "file:///opt/My%20App/bin/run-it_2.0~x");
  EXPECT_EQ(fileUri("/home/jürgen/日本"), "file:///home/j%C3%BCrgen/%E6%97%A5%E6%9C%AC");
  EXPECT_EQ(fileUri("/a#b?c%d+e"), "file:///a%23b%3Fc%25d%2Be");
}

TEST(FileManagerTest, RelativeAndEmptyPathsAreRefused) {
  EXPECT_FALSE(revealInFileManager(""));
  EXPECT_FALSE(revealInFileManager("bin/top"));
}

}  // namespace
}  // namespace quillmark
