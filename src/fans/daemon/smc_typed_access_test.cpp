#include "fans/daemon/smc_typed_access.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillmark {
namespace {

using Bytes = std::vector<std::uint8_t>;
using KeyType = SmcTypedAccess::KeyType;

KeyType type(const char (&code)[5], std::uint32_t size) {
  return {{static_cast<std::uint8_t>(code[0]), static_cast<std::uint8_t>(code[1]),
           static_cast<std::uint8_t>(code[2]), static_cast<std::uint8_t>(code[3])},
          size};
}

TEST(SmcTypedAccessTest, EachTypeIsEncodedTheWayTheControllerStoresIt) {
  EXPECT_EQ(SmcTypedAccess::encode(type("flt ", 4), 3000.0), (Bytes{0x00, 0x80, 0x3B, 0x45}));
  EXPECT_EQ(SmcTypedAccess::decode(type("flt ", 4), Bytes{0x00, 0x00, 0x96, 0x44}), 1200.0);
  EXPECT_EQ(SmcTypedAccess::encode(type("fpe2", 2), 1200.0), (Bytes{0x12, 0xC0}));
  EXPECT_EQ(SmcTypedAccess::decode(type("fpe2", 2), Bytes{0x12, 0xC0}), 1200.0);
  // A mode key is one byte: 1 must stay 1, not become the first byte of a float.
  EXPECT_EQ(SmcTypedAccess::encode(type("ui8 ", 1), 1.0), (Bytes{0x01}));
  EXPECT_EQ(SmcTypedAccess::decode(type("ui8 ", 1), Bytes{0x03}), 3.0);
  EXPECT_EQ(SmcTypedAccess::encode(type("ui16", 2), 513.0), (Bytes{0x02, 0x01}));
  // What a type cannot hold, or a size that does not match it, is refused.
  EXPECT_EQ(SmcTypedAccess::encode(type("ui8 ", 1), 256.0), std::nullopt);
  EXPECT_EQ(SmcTypedAccess::encode(type("ui8 ", 1), -1.0), std::nullopt);
  EXPECT_EQ(SmcTypedAccess::encode(type("flt ", 4), std::nan("")), std::nullopt);
  EXPECT_EQ(SmcTypedAccess::encode(type("flt ", 2), 1.0), std::nullopt);
  EXPECT_EQ(SmcTypedAccess::encode(type("sp78", 2), 40.0), std::nullopt);
  EXPECT_EQ(SmcTypedAccess::decode(type("ui8 ", 1), Bytes{1, 2}), std::nullopt);
}

}  // namespace
}  // namespace quillmark
