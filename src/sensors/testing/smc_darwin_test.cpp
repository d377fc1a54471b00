// The SMC reader compiled for Linux against the stub SDK and run against a scripted controller.
#include <gtest/gtest.h>

#include "fans/fan_reader.h"
#include "sensors/smc.h"
#include "sensors/smc_record.h"
#include "sensors/testing/fake_iokit.h"

namespace quillmark {
namespace {

using fake_iokit::code;
using fake_iokit::iokit;

// The SMC keeps its connection and cache for the process, so each test uses keys of its own.
class SMCTest : public ::testing::Test {
 protected:
  void SetUp() override { fake_iokit::reset(); }

  static int exchangesFor(const std::string& key) {
    int n = 0;
    for (const auto& e : iokit().exchanges) n += e.key == code(key);
    return n;
  }
};

TEST_F(SMCTest, DecodesByLengthAlone) {
  using Bytes = std::vector<std::uint8_t>;
  EXPECT_EQ(SMC::decode(Bytes{0x00, 0x00, 0x48, 0x42}), 50.0);
  EXPECT_EQ(SMC::decode(Bytes{0x00, 0x00, 0x48, 0xC2}), 0.0);  // -50 falls through to 00 00
  EXPECT_EQ(SMC::decode(Bytes{0x00, 0x00, 0xC0, 0x7F}), 0.0);  // NaN likewise
  EXPECT_EQ(SMC::decode(Bytes{0x0B, 0xB8}), 750.0);
  EXPECT_EQ(SMC::decode(Bytes{0x0B, 0xBB}), 750.0);
  EXPECT_EQ(SMC::decode(Bytes{0x0B, 0xB8, 0x01}), 750.0);  // 3 bytes: the 16-bit rule
  EXPECT_EQ(SMC::decode(Bytes{0x2A}), std::nullopt);
  EXPECT_EQ(SMC::fourCharCode("TB0T"), 0x54423054u);
  EXPECT_EQ(SMC::fourCharCode("Tp0"), 0x00547030u);
  EXPECT_EQ(SMC::fourCharCode("F0Acxyz"), 0x46304163u);
  EXPECT_EQ(SMC::fourCharCode(""), 0u);
}

TEST_F(SMCTest, ReadSendsTheDescribedRecordAndCachesTheDescription) {
  iokit().smcKeys["Ta0R"] = {{'f', 'l', 't', ' '}, {0x00, 0x00, 0x48, 0x42}, std::nullopt, 0xD4};
  EXPECT_EQ(SMC::readValue("Ta0R"), 50.0);
  const int opens = iokit().opens;
  ASSERT_EQ(iokit().exchanges.size(), 2u);
  const auto& describe = iokit().exchanges[0];
  EXPECT_EQ(describe.selector, 2u);
  EXPECT_EQ(describe.inputSize, 80u);
  EXPECT_EQ(describe.outputCapacity, 80u);
  EXPECT_EQ(describe.command, 9);
  EXPECT_EQ(describe.dataSize, 0u);
  const auto& read = iokit().exchanges[1];
  EXPECT_EQ(read.command, 5);
  EXPECT_EQ(read.key, 0x54613052u);  // stored little-endian: the bytes 52 30 61 54
  EXPECT_EQ(read.dataSize, 4u);
  EXPECT_EQ(read.dataType, (std::array<std::uint8_t, 4>{'f', 'l', 't', ' '}));
  EXPECT_EQ(read.dataAttrs, 0xD4);

  EXPECT_EQ(SMC::readValue("Ta0R"), 50.0);
  EXPECT_EQ(exchangesFor("Ta0R"), 3);  // a known key costs one exchange
  EXPECT_EQ(iokit().opens, opens);
  EXPECT_LE(opens, 1);
}

TEST_F(SMCTest, MissingAndBadlySizedKeysAreNeverAskedAgain) {
  iokit().smcKeys["Tz0A"] = {{'f', 'l', 't', ' '}, {1, 2, 3, 4}, 0u, 0};
  iokit().smcKeys["Tz0B"] = {{'f', 'l', 't', ' '}, {1, 2, 3, 4}, 33u, 0};
  iokit().smcKeys["Tz0C"] = {{'u', 'i', '8', ' '}, {0x0C}, std::nullopt, 0};
  iokit().smcKeys["Tz0D"] = {{'c', 'h', '8', '*'}, std::vector<std::uint8_t>(32, 0x10), std::nullopt, 0};
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(SMC::readBytes("Tz0M"), std::nullopt);  // not on this machine
    EXPECT_EQ(SMC::readBytes("Tz0A"), std::nullopt);
    EXPECT_EQ(SMC::readBytes("Tz0B"), std::nullopt);
  }
  EXPECT_EQ(exchangesFor("Tz0M") + exchangesFor("Tz0A") + exchangesFor("Tz0B"), 3);
  EXPECT_EQ(SMC::readBytes("Tz0C"), std::vector<std::uint8_t>{0x0C});  // 1 byte is a size...
  EXPECT_EQ(SMC::readValue("Tz0C"), std::nullopt);                     // ...but no number
  EXPECT_EQ(SMC::readBytes("Tz0D")->size(), 32u);
}

TEST_F(SMCTest, AFailedExchangeIsRetriedOnceOnAReopenedConnection) {
  iokit().smcKeys["Tr0A"] = {{'f', 'p', 'e', '2'}, {0x0B, 0xB8}, std::nullopt, 0};
  ASSERT_EQ(SMC::readValue("Tr0A"), 750.0);  // described and connected
  const int opensBefore = iokit().opens;
  iokit().failingCalls = 1;
  EXPECT_EQ(SMC::readValue("Tr0A"), 750.0);
  EXPECT_EQ(iokit().closes, 1);
  EXPECT_EQ(iokit().opens, opensBefore + 1);

  iokit().failingCalls = 2;  // twice in a row: nothing, and the key is not written off
  EXPECT_EQ(SMC::readValue("Tr0A"), std::nullopt);
  EXPECT_EQ(SMC::readValue("Tr0A"), 750.0);

  iokit().smcKeys["Tr0B"] = {{'f', 'p', 'e', '2'}, {0x0B, 0xB8}, std::nullopt, 0};
  iokit().failingCalls = 2;  // a description that fails twice is a negative entry
  EXPECT_EQ(SMC::readValue("Tr0B"), std::nullopt);
  EXPECT_EQ(SMC::readValue("Tr0B"), std::nullopt);
  EXPECT_EQ(exchangesFor("Tr0B"), 2);
}

TEST_F(SMCTest, WritesCheckSizeAndTheControllersAnswer) {
  iokit().smcKeys["F7Md"] = {{'u', 'i', '8', ' '}, {0}, std::nullopt, 0};
  const std::uint8_t manual[] = {1};
  const std::uint8_t wide[] = {0, 0, 0x80, 0x3F};
  EXPECT_EQ(SMC::writeBytes("F7Md", wide), SMCWriteResult::sizeMismatch);
  iokit().writeResult = 0x82;  // thermalmonitord holds the fans
  EXPECT_EQ(SMC::writeBytes("F7Md", manual), SMCWriteResult::refused);
  EXPECT_EQ(iokit().smcKeys["F7Md"].bytes, std::vector<std::uint8_t>{0});
  iokit().writeResult = 0;
  EXPECT_EQ(SMC::writeBytes("F7Md", manual), SMCWriteResult::ok);
  EXPECT_EQ(iokit().exchanges.back().command, 6);
  EXPECT_EQ(iokit().exchanges.back().value, std::vector<std::uint8_t>{1});
  EXPECT_EQ(iokit().smcKeys["F7Md"].bytes, std::vector<std::uint8_t>{1});
  EXPECT_EQ(SMC::writeBytes("F7Xx", manual), SMCWriteResult::unknownKey);
}

TEST_F(SMCTest, FanReaderSkipsGapsInTheFanNumbers) {
  // Fan keys are asked of every test's fresh controller, so this test owns F0..F9 reads.
  iokit().smcKeys["F0Ac"] = {{'f', 'l', 't', ' '}, {0x00, 0x80, 0x3B, 0x45}, std::nullopt, 0};  // 3000
  iokit().smcKeys["F2Ac"] = {{'f', 'l', 't', ' '}, {0x00, 0x00, 0x96, 0x44}, std::nullopt, 0};  // 1200
  EXPECT_EQ(FanReader::readFanSpeeds(), (std::vector<double>{3000.0, 1200.0}));
}

}  // namespace
}  // namespace quillmark
