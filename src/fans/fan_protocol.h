#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sampling/samples.h"

namespace quillmark {

// The daemon's Mach service on macOS, and the property list that registers it.
inline constexpr std::string_view fanHelperMachName = "com.quillmark.helper";
inline constexpr std::string_view kFanHelperPlistName = "com.quillmark.helper.plist";
// The version text the daemons report.
inline constexpr std::string_view kFanHelperVersion = "1.0";

// The operations every fan helper daemon serves. heartbeat is one-way (no reply).
enum class FanOp { getVersion, readFans, setFanFloor, releaseControl, heartbeat };

// One command to the daemon. rpm is meaningful for setFanFloor only.
struct FanRequest {
  FanOp op = FanOp::getVersion;
  std::uint64_t id = 0;  // echoed in the reply so answers can be matched to commands
  std::int64_t rpm = 0;
  bool operator==(const FanRequest&) const = default;
};

// The daemon's answer to one command. ok is the operation's result (setFanFloor and
// releaseControl answer with it alone); version and fans are filled for their operations;
// error explains a refusal (empty when ok).
struct FanReply {
  std::uint64_t id = 0;
  bool ok = false;
  std::string version;
  std::vector<FanReading> fans;
  std::string error;
  bool operator==(const FanReply&) const = default;
};

// The wire format shared by the Linux socket and the macOS XPC fan data: one JSON object per
// line, at most kMaxLineBytes including the newline.
//   request  {"op":"setFanFloor","id":7,"rpm":2500}
//   reply    {"id":7,"ok":true}  {"id":1,"ok":true,"version":"1.0"}  {"id":2,"ok":true,"fans":[...]}
//            {"id":0,"ok":false,"error":"..."}
// Fan readings use the keys index, actualRPM, targetRPM, minRPM, maxRPM, forced.
// Decoders take hostile input: any fault is a clear error, never an exception or a crash.
// Any thread may call these functions.
namespace FanProtocol {

inline constexpr std::size_t kMaxLineBytes = 4096;
// Larger floors are not speeds any fan has; they are refused rather than clamped.
inline constexpr std::int64_t kMaxRpm = 100000;

[[nodiscard]] std::string_view opName(FanOp op);

// Each encodes one line, newline included.
[[nodiscard]] std::string encodeRequest(const FanRequest& request);
[[nodiscard]] std::string encodeReply(const FanReply& reply);

// A line without its newline. On failure the result is absent and error says why.
[[nodiscard]] std::optional<FanRequest> decodeRequest(std::string_view line, std::string& error);
[[nodiscard]] std::optional<FanReply> decodeReply(std::string_view line, std::string& error);

// A JSON array of fan readings (what readFansWithReply: returns over XPC). Any fault, in any
// element, gives an empty list.
[[nodiscard]] std::string encodeFanReadings(const std::vector<FanReading>& fans);
[[nodiscard]] std::vector<FanReading> decodeFanReadings(std::string_view json);

}  // namespace FanProtocol

// Cuts a byte stream into lines of at most FanProtocol::kMaxLineBytes. Once a line grows past
// the limit the splitter is overflowed for good: the peer is not speaking the protocol and the
// connection should be closed. One thread at a time.
class LineSplitter {
 public:
  // Appends bytes and returns the complete lines they finish, without their newlines.
  [[nodiscard]] std::vector<std::string> feed(std::string_view bytes);
  [[nodiscard]] bool overflowed() const { return overflowed_; }

 private:
  std::string pending_;
  bool overflowed_ = false;
};

}  // namespace quillmark
