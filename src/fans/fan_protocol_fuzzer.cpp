// libFuzzer target: the daemon decodes whatever a local process writes to its socket, and the
// app decodes whatever the daemon answers. Feeds the input through the line splitter and every
// decoder, and checks that whatever decodes survives a round trip.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fans/fan_protocol.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillmark;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  LineSplitter splitter;
  // Two feeds, so a line cut across reads is exercised.
  for (const auto part : {bytes.substr(0, size / 2), bytes.substr(size / 2)}) {
    for (const std::string& line : splitter.feed(part)) {
      std::string error;
      if (const auto request = FanProtocol::decodeRequest(line, error)) {
        std::string encoded = FanProtocol::encodeRequest(*request);
        encoded.pop_back();
        if (FanProtocol::decodeRequest(encoded, error) != request) std::abort();
      }
      if (const auto reply = FanProtocol::decodeReply(line, error)) (void)FanProtocol::encodeReply(*reply);
    }
  }
  (void)FanProtocol::decodeFanReadings(bytes);
  return 0;
}
