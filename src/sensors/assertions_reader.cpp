#include "sensors/assertions_reader.h"

#include <algorithm>
#include <array>

namespace quillmark {
namespace {

constexpr std::array<std::string_view, 5> kBlockingTypes = {
    "NoIdleSleepAssertion", "PreventUserIdleSystemSleep", "PreventUserIdleDisplaySleep", "PreventSystemSleep",
    "NoDisplaySleepAssertion"};
// Daemons that hold assertions as a matter of course; naming them would only be noise.
constexpr std::array<std::string_view, 8> kSystemNoise = {"powerd",       "hidd",         "coreaudiod",
                                                          "WindowServer", "loginwindow",  "bluetoothd",
                                                          "backboardd",   "runningboardd"};

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& set, std::string_view value) {
  return std::find(set.begin(), set.end(), value) != set.end();
}

}  // namespace

bool AssertionsReader::counts(std::string_view type, std::optional<std::string_view> processName) {
  if (!contains(kBlockingTypes, type)) return false;
  return !processName || !contains(kSystemNoise, *processName);
}

}  // namespace quillmark
