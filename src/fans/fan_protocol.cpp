#include "fans/fan_protocol.h"

#include <array>
#include <nlohmann/json.hpp>
#include <utility>

namespace quillmark::FanProtocol {
namespace {

using nlohmann::json;

constexpr std::array<std::pair<FanOp, std::string_view>, 5> kOps{{
    {FanOp::getVersion, "getVersion"},
    {FanOp::readFans, "readFans"},
    {FanOp::setFanFloor, "setFanFloor"},
    {FanOp::releaseControl, "releaseControl"},
    {FanOp::heartbeat, "heartbeat"},
}};

// Text that came from outside may not be valid UTF-8; dumping it must not throw.
std::string dumpLine(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
}

std::optional<json> parseObject(std::string_view line, std::string& error) {
  if (line.size() >= kMaxLineBytes) {
    error = "message too long";
    return std::nullopt;
  }
  json value = json::parse(line.begin(), line.end(), nullptr, /*allow_exceptions=*/false);
  if (value.is_discarded()) {
    error = "not JSON";
    return std::nullopt;
  }
  if (!value.is_object()) {
    error = "not a JSON object";
    return std::nullopt;
  }
  return value;
}

// An unsigned id; absent means 0.
bool readId(const json& object, std::uint64_t& id, std::string& error) {
  const auto it = object.find("id");
  if (it == object.end()) return true;
  if (!it->is_number_unsigned()) {
    error = "id must be a whole number >= 0";
    return false;
  }
  id = it->get<std::uint64_t>();
  return true;
}

json fanJson(const FanReading& fan) {
  return json{{"index", fan.index},   {"actualRPM", fan.actualRPM}, {"targetRPM", fan.targetRPM},
              {"minRPM", fan.minRPM}, {"maxRPM", fan.maxRPM},       {"forced", fan.forced}};
}

bool readNumber(const json& object, const char* key, double& out) {
  const auto it = object.find(key);
  if (it == object.end() || !it->is_number()) return false;
  out = it->get<double>();
  return true;
}

std::optional<FanReading> fanFromJson(const json& value) {
  if (!value.is_object()) return std::nullopt;
  FanReading fan;
  const auto index = value.find("index");
  if (index == value.end() || !index->is_number_integer()) return std::nullopt;
  const auto wide = index->get<std::int64_t>();
  if (wide < 0 || wide > 255) return std::nullopt;
  fan.index = static_cast<int>(wide);
  const auto forced = value.find("forced");
  if (forced == value.end() || !forced->is_boolean()) return std::nullopt;
  fan.forced = forced->get<bool>();
  if (!readNumber(value, "actualRPM", fan.actualRPM) || !readNumber(value, "targetRPM", fan.targetRPM) ||
      !readNumber(value, "minRPM", fan.minRPM) || !readNumber(value, "maxRPM", fan.maxRPM)) {
    return std::nullopt;
  }
  return fan;
}

std::optional<std::vector<FanReading>> fansFromJson(const json& value) {
  if (!value.is_array()) return std::nullopt;
  std::vector<FanReading> fans;
  fans.reserve(value.size());
  for (const json& element : value) {
    auto fan = fanFromJson(element);
    if (!fan) return std::nullopt;
    fans.push_back(*fan);
  }
  return fans;
}

}  // namespace

std::string_view opName(FanOp op) {
  for (const auto& [value, name] : kOps) {
    if (value == op) return name;
  }
  return "unknown";
}

std::string encodeRequest(const FanRequest& request) {
  json out{{"op", opName(request.op)}, {"id", request.id}};
  if (request.op == FanOp::setFanFloor) out["rpm"] = request.rpm;
  return dumpLine(out);
}

std::string encodeReply(const FanReply& reply) {
  json out{{"id", reply.id}, {"ok", reply.ok}};
  if (!reply.version.empty()) out["version"] = reply.version;
  if (!reply.fans.empty()) {
    json fans = json::array();
    for (const FanReading& fan : reply.fans) fans.push_back(fanJson(fan));
    out["fans"] = std::move(fans);
  }
  if (!reply.error.empty()) out["error"] = reply.error;
  return dumpLine(out);
}

std::optional<FanRequest> decodeRequest(std::string_view line, std::string& error) {
  const auto object = parseObject(line, error);
  if (!object) return std::nullopt;
  FanRequest request;
  if (!readId(*object, request.id, error)) return std::nullopt;
  const auto op = object->find("op");
  if (op == object->end() || !op->is_string()) {
    error = "op missing";
    return std::nullopt;
  }
  const auto& name = op->get_ref<const std::string&>();
  bool known = false;
  for (const auto& [value, text] : kOps) {
    if (text == name) {
      request.op = value;
      known = true;
    }
  }
  if (!known) {
    error = "unknown op";
    return std::nullopt;
  }
  if (request.op != FanOp::setFanFloor) return request;
  const auto rpm = object->find("rpm");
  if (rpm == object->end() || !rpm->is_number_integer()) {
    error = "rpm must be a whole number";
    return std::nullopt;
  }
  // A huge unsigned value does not fit int64; it is out of range either way.
  if (rpm->is_number_unsigned() && rpm->get<std::uint64_t>() > static_cast<std::uint64_t>(kMaxRpm)) {
    error = "rpm out of range";
    return std::nullopt;
  }
  request.rpm = rpm->get<std::int64_t>();
  if (request.rpm < 0 || request.rpm > kMaxRpm) {
    error = "rpm out of range";
    return std::nullopt;
  }
  return request;
}

std::optional<FanReply> decodeReply(std::string_view line, std::string& error) {
  const auto object = parseObject(line, error);
  if (!object) return std::nullopt;
  FanReply reply;
  if (!readId(*object, reply.id, error)) return std::nullopt;
  const auto ok = object->find("ok");
  if (ok == object->end() || !ok->is_boolean()) {
    error = "ok missing";
    return std::nullopt;
  }
  reply.ok = ok->get<bool>();
  if (const auto version = object->find("version"); version != object->end()) {
    if (!version->is_string()) {
      error = "version must be text";
      return std::nullopt;
    }
    reply.version = version->get<std::string>();
  }
  if (const auto fans = object->find("fans"); fans != object->end()) {
    auto decoded = fansFromJson(*fans);
    if (!decoded) {
      error = "fans malformed";
      return std::nullopt;
    }
    reply.fans = std::move(*decoded);
  }
  if (const auto text = object->find("error"); text != object->end() && text->is_string()) {
    reply.error = text->get<std::string>();
  }
  return reply;
}

std::string encodeFanReadings(const std::vector<FanReading>& fans) {
  json out = json::array();
  for (const FanReading& fan : fans) out.push_back(fanJson(fan));
  return out.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::vector<FanReading> decodeFanReadings(std::string_view text) {
  const json value = json::parse(text.begin(), text.end(), nullptr, /*allow_exceptions=*/false);
  if (value.is_discarded()) return {};
  return fansFromJson(value).value_or(std::vector<FanReading>{});
}

}  // namespace quillmark::FanProtocol

namespace quillmark {

std::vector<std::string> LineSplitter::feed(std::string_view bytes) {
  std::vector<std::string> lines;
  if (overflowed_) return lines;
  for (const char c : bytes) {
    if (c == '\n') {
      lines.push_back(std::move(pending_));
      pending_.clear();
      continue;
    }
    pending_.push_back(c);
    if (pending_.size() >= FanProtocol::kMaxLineBytes) {
      overflowed_ = true;
      pending_.clear();
      return lines;
    }
  }
  return lines;
}

}  // namespace quillmark
