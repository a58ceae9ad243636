#include <gtest/gtest.h>

#include <limits>

#include "kernels/curve/Contrast.h"

namespace krl::test {
namespace {

TEST(Contrast, ScalesTheDistanceFrom127AndDividesTowardZero) {
    for (float contrast : {-2.0f, -0.3f, 0.0f, 0.7f, 1.0f, 1.4f, 4.0f}) {
        const ByteCurve curve = contrastCurve(contrast);
        const int factor = int(contrast * 1024.0);
        for (int i = 0; i < 256; ++i) {
            const int level = (i - 127) * factor / 1024 + 127;
            ASSERT_EQ(curve[size_t(i)], level < 0 ? 0 : level > 255 ? 255 : level) << contrast << ' ' << i;
        }
    }
}

TEST(Contrast, OfNoNumberIsTheSmallestFactor) {
    EXPECT_EQ(contrastFactor(std::numeric_limits<float>::quiet_NaN()), INT32_MIN);
    EXPECT_EQ(contrastFactor(std::numeric_limits<float>::infinity()), INT32_MIN);
}

}  // namespace
}  // namespace krl::test
