#pragma once

#include <cstdio>
#include <cstdlib>

// Invariants that must hold in release builds too: a broken one means the program's own state is
// wrong, and carrying on would publish nonsense or signal the wrong process.
#define QM_CHECK(cond)                                                              \
  do {                                                                              \
    if (!(cond)) {                                                                  \
      std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond); \
      std::abort();                                                                 \
    }                                                                               \
  } while (false)

namespace quillmark {

// Overflow of a counter or a byte sum is a fault, never a silent wrap.
template <class T>
[[nodiscard]] inline T checkedAdd(T a, T b) {
  T out{};
  QM_CHECK(!__builtin_add_overflow(a, b, &out));
  return out;
}

template <class T>
[[nodiscard]] inline T checkedMul(T a, T b) {
  T out{};
  QM_CHECK(!__builtin_mul_overflow(a, b, &out));
  return out;
}

}  // namespace quillmark
