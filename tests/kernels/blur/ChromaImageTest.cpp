#include <gtest/gtest.h>

#include "kernels/blur/ChromaImage.h"
#include "core/ExactDivision.h"
#include "core/Numbers.h"
#include "reference/ChromaReference.h"

namespace krl::test {

// Integer division, the float scale and the fast form agree for every luma and every difference, so
// one conversion serves all effects.
TEST(Chroma, IsTheSameByDivisionByScaleAndInVectors) {
    for (int32_t n = 0; n <= 255000; ++n) {
        ASSERT_EQ(thousandth(n), n / 1000);
        ASSERT_EQ(truncate(n * reference::kThousandth), n / 1000);
    }
    for (int32_t factor : {565, 713, 1770, 344, 714, 1403}) {
        for (int32_t difference = -255; difference <= 255; ++difference) {
            const int32_t n = factor * difference;
            ASSERT_EQ(thousandth(n), n / 1000);
            ASSERT_EQ(-truncate(n * -reference::kThousandth), n / 1000);
        }
    }
}

TEST(Chroma, FitsBytesForEveryColour) {
    for (int32_t blue = 0; blue < 256; blue += 3)
        for (int32_t green = 0; green < 256; green += 5)
            for (int32_t red = 0; red < 256; red += 3) {
                const Pixel p{uint8_t(blue), uint8_t(green), uint8_t(red), 0};
                ASSERT_EQ(reference::chromaByDivision(p), reference::chromaByScale(p));
            }
    EXPECT_EQ(reference::chromaByDivision({255, 0, 0, 0}), (Pixel{255, 108, 29, 0}));
    EXPECT_EQ(reference::chromaByDivision({0, 0, 255, 0}), (Pixel{86, 255, 76, 0}));
}

}  // namespace krl::test
