#include <gtest/gtest.h>

#include "core/ByteArithmetic.h"
#include "core/LookupTables.h"
#include "support/Picture.h"

namespace krl::test {

TEST(ByteArithmetic, DividesExactly) {
    for (int32_t x = 0; x < 65280; ++x) {
        ASSERT_EQ(dividedBy255(x), x / 255);
        ASSERT_EQ(dividedBy255(static_cast<uint16_t>(x)), x / 255);
    }
}

TEST(ByteArithmetic, EqualsTheTablesForAllBytes) {
    for (size_t a = 0; a < 256; ++a)
        for (size_t b = 0; b < 256; ++b) {
            ASSERT_EQ(scaledByte(uint8_t(a), uint8_t(b)), sharedTables().scaleByte[a][b]) << a << ' ' << b;
            ASSERT_EQ(screenedByte(uint8_t(a), uint8_t(b)), sharedTables().blendScreen[a][b])
                << a << ' ' << b;
            ASSERT_EQ(softLitByte(uint32_t(a), uint32_t(b)), sharedTables().blendSoftLight[a][b])
                << a << ' ' << b;
        }
}

}  // namespace krl::test
