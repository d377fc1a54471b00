#include "sampling/samples.h"

#include <algorithm>

#include "base/check.h"

namespace quillmark {

std::uint64_t MemorySample::used() const { return checkedAdd(checkedAdd(app, wired), compressed); }

double MemorySample::usageFraction() const {
  if (total == 0) return 0;
  return std::min(1.0, static_cast<double>(used()) / static_cast<double>(total));
}

}  // namespace quillmark
