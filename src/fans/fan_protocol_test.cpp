#include "fans/fan_protocol.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string withoutNewline(std::string line) {
  EXPECT_EQ(line.back(), '\n');
  line.pop_back();
  return line;
}

TEST(FanProtocolTest, RequestsAndRepliesSurviveTheWire) {
  std::string error;
  for (const FanRequest& request :
       {FanRequest{FanOp::setFanFloor, 7, 2500}, FanRequest{FanOp::heartbeat, 0, 0},
        FanRequest{FanOp::releaseControl, 3, 0}}) {
    const auto line = withoutNewline(FanProtocol::encodeRequest(request));
    EXPECT_EQ(FanProtocol::decodeRequest(line, error), request) << line;
  }
  const FanReply reply{9, true, "1.0", {{0, 2400.5, 3000, 1200, 6000, true}, {1, 0, 0, 0, 5000, false}}, ""};
  const auto line = withoutNewline(FanProtocol::encodeReply(reply));
  EXPECT_EQ(FanProtocol::decodeReply(line, error), reply);
  EXPECT_EQ(FanProtocol::decodeFanReadings(FanProtocol::encodeFanReadings(reply.fans)), reply.fans);
}

TEST(FanProtocolTest, HostileRequestsAreRefusedWithAReason) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "not JSON"},
      {"{\"op\":\"setFanFloor\",\"rpm\":", "not JSON"},
      {"[1,2]", "not a JSON object"},
      {"{\"op\":\"spinUp\"}", "unknown op"},
      {"{\"op\":7}", "op missing"},
      {"{\"op\":\"readFans\",\"id\":-1}", "id must be a whole number >= 0"},
      {"{\"op\":\"setFanFloor\"}", "rpm must be a whole number"},
      {"{\"op\":\"setFanFloor\",\"rpm\":2500.5}", "rpm must be a whole number"},
      {"{\"op\":\"setFanFloor\",\"rpm\":\"2500\"}", "rpm must be a whole number"},
      {"{\"op\":\"setFanFloor\",\"rpm\":-1}", "rpm out of range"},
      {"{\"op\":\"setFanFloor\",\"rpm\":100001}", "rpm out of range"},
      {"{\"op\":\"setFanFloor\",\"rpm\":18446744073709551615}", "rpm out of range"},
      {"{\"op\":\"setFanFloor\",\"rpm\":1e300}", "rpm must be a whole number"},
      {"{\"op\":\"setFanFloor\",\"rpm\":99999999999999999999999}", "rpm must be a whole number"},
      {"{\"op\":\"\xff\xfe\"}", "not JSON"},
      {std::string(5000, '['), "message too long"},
      {std::string(4000, '[') + std::string(4000, ']'), "message too long"},
  };
  for (const auto& [line, reason] : cases) {
    std::string error;
    EXPECT_FALSE(FanProtocol::decodeRequest(line, error)) << line.substr(0, 60);
    EXPECT_EQ(error, reason) << line.substr(0, 60);
  }
  // Deep nesting that fits the limit is parsed, not a stack overflow.
  std::string error;
  EXPECT_FALSE(FanProtocol::decodeRequest(std::string(2000, '[') + std::string(2000, ']'), error));
  // Unknown extra fields are ignored so an older daemon understands a newer client.
  EXPECT_EQ(FanProtocol::decodeRequest("{\"op\":\"setFanFloor\",\"rpm\":0,\"id\":4,\"why\":[1]}", error),
            (FanRequest{FanOp::setFanFloor, 4, 0}));
}

TEST(FanProtocolTest, FanDataThatDoesNotDecodeIsNoFans) {
  EXPECT_THAT(FanProtocol::decodeFanReadings("[]"), IsEmpty());
  EXPECT_THAT(FanProtocol::decodeFanReadings("not json"), IsEmpty());
  EXPECT_THAT(FanProtocol::decodeFanReadings("{\"index\":0}"), IsEmpty());
  const std::string good =
      R"({"index":0,"actualRPM":1200,"targetRPM":0,"minRPM":1000,"maxRPM":6000,"forced":false})";
  EXPECT_THAT(FanProtocol::decodeFanReadings("[" + good + "]"),
              ElementsAre(FanReading{0, 1200, 0, 1000, 6000, false}));
  // One bad element spoils the list rather than shifting fan numbers.
  EXPECT_THAT(FanProtocol::decodeFanReadings("[" + good + ",{\"index\":1}]"), IsEmpty());
  EXPECT_THAT(FanProtocol::decodeFanReadings(
                  R"([{"index":-3,"actualRPM":1,"targetRPM":0,"minRPM":0,"maxRPM":1,"forced":true}])"),
              IsEmpty());
  std::string error;
  EXPECT_FALSE(FanProtocol::decodeReply(R"({"id":1,"ok":true,"fans":{}})", error));
  EXPECT_FALSE(FanProtocol::decodeReply(R"({"id":1})", error));
}

TEST(FanProtocolTest, LinesAreCutAcrossReadsAndAnOverlongLineEndsTheStream) {
  LineSplitter splitter;
  EXPECT_THAT(splitter.feed("{\"a\":1}\n{\"b\""), ElementsAre("{\"a\":1}"));
  EXPECT_THAT(splitter.feed(":2}\n\n"), ElementsAre("{\"b\":2}", ""));
  EXPECT_THAT(splitter.feed(std::string(FanProtocol::kMaxLineBytes, 'x') + "\nok\n"), IsEmpty());
  EXPECT_TRUE(splitter.overflowed());
  EXPECT_THAT(splitter.feed("later\n"), IsEmpty());
}

}  // namespace
}  // namespace quillmark
