#include "app/frontend/line_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace quillmark {
namespace {

// A real pipe whose reader the test plays: it reads only when told to.
class LineWriterTest : public ::testing::Test {
 protected:
  LineWriterTest() {
    writer.wantWritable = [this](bool want) { waiting = want; };
  }
  ~LineWriterTest() override {
    for (int fd : fds) {
      if (fd >= 0) close(fd);
    }
  }
  // Fills the pipe to the last byte, as a reader that stopped reading leaves it.
  void stall() {
    const std::string block(4096, '#');
    while (write(fds[1], block.data(), block.size()) > 0) {
    }
    while (write(fds[1], "#", 1) > 0) {
    }
  }
  // Everything in the pipe, with the stall's filler taken away.
  std::string drain() {
    std::string all;
    char buffer[65536];
    for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;)
      all.append(buffer, static_cast<std::size_t>(n));
    all.erase(0, all.find_first_not_of('#'));
    return all;
  }

  static int* openPipe(int* fds) {
    EXPECT_EQ(pipe2(fds, O_NONBLOCK | O_CLOEXEC), 0);
    return fds;
  }
  int fds[2] = {-1, -1};
  LineWriter writer{openPipe(fds)[1]};
  bool waiting = false;
};

TEST_F(LineWriterTest, WhileTheReaderIsBehindOnlyTheNewestLineWaitsAndKeptLinesAllGo) {
  stall();
  writer.write("header", true);
  writer.write("status 1");
  writer.write("status 2");
  writer.write("status 3");
  EXPECT_TRUE(waiting);
  EXPECT_FALSE(writer.idle());
  EXPECT_EQ(writer.droppedLines(), 2u);
  EXPECT_EQ(drain(), "");  // the reader catches up with the filler, and nothing else was out...
  writer.onWritable();     // ...and the loop reports room
  EXPECT_EQ(drain(), "header\nstatus 3\n");
  EXPECT_FALSE(waiting);
  EXPECT_TRUE(writer.idle());
}

TEST_F(LineWriterTest, ALineThatIsHalfOutIsFinishedBeforeAnyOther) {
  const std::string longLine(100'000, 'x');  // larger than the pipe
  writer.write(longLine);
  EXPECT_TRUE(waiting);
  writer.write("next 1");
  writer.write("next 2");
  std::string seen;
  for (int round = 0; round < 10 && !writer.idle(); ++round) {
    seen += drain();
    writer.onWritable();
  }
  seen += drain();
  EXPECT_TRUE(seen == longLine + "\nnext 2\n")
      << seen.size() << " bytes, ending " << seen.substr(seen.size() - 20);
  EXPECT_EQ(writer.droppedLines(), 1u);
}

}  // namespace
}  // namespace quillmark
