#include <gtest/gtest.h>

#include "core/LookupTables.h"
#include "kernels/blend/ShortProducts.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

TEST(ShortProducts, AreAllPairsWhoseEntriesFallShortOfTheirArithmetic) {
    const LookupTables& tables = sharedTables();
    for (int32_t front = 0; front < 256; ++front)
        for (int32_t behind = 0; behind < 256; ++behind) {
            const auto f = static_cast<uint8_t>(front), b = static_cast<uint8_t>(behind);
            const int32_t missing = isShortProduct(f, b);
            ASSERT_EQ(tables.blendMultiply[f][b], front * behind / 255 - missing) << front << ' ' << behind;
            if (behind < 128) {
                ASSERT_EQ(tables.blendOverlay[f][b], 2 * front * behind / 255 - missing)
                    << front << ' ' << behind;
            }
        }
}

}  // namespace
}  // namespace krl::test
