#include "base/clock.h"

#include <chrono>

namespace quillmark {
namespace {

class SystemClock final : public Clock {
 public:
  double unixNow() const override {
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
  }
  double monotonicNow() const override {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
  }
};

}  // namespace

Clock& Clock::system() {
  static SystemClock clock;
  return clock;
}

}  // namespace quillmark
