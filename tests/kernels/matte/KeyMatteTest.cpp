#include <gtest/gtest.h>

#include "kernels/matte/KeyMatte.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

TEST(KeyMatte, KeepLowersAndRemoveRaises) {
    for (int32_t alpha = 0; alpha < 256; ++alpha)
        for (int32_t m = 0; m < 256; ++m) {
            const auto folded = [=](bool keep, bool invert) {
                return int32_t(applyKeyMatte(uint8_t(alpha), uint8_t(m), keep, invert));
            };
            ASSERT_EQ(folded(true, false), std::min(alpha, 255 - m));
            ASSERT_EQ(folded(true, true), std::min(alpha, m));
            ASSERT_EQ(folded(false, false), std::max(alpha, m));
            ASSERT_EQ(folded(false, true), std::max(alpha, 255 - m));
        }
}

TEST(KeyMatte, RunsGiveWhatPixelsGive) {
    const auto matteOf = [](const Pixel& p) { return uint8_t(p.blue ^ p.red); };
    for (const bool keep : {false, true})
        for (const bool invert : {false, true}) {
            const auto byPixel = [&](ImageEngine& e) {
                return forEachPixel(
                    e, [&](Pixel& p) { p.alpha = applyKeyMatte(p.alpha, matteOf(p), keep, invert); });
            };
            const auto bySpan = [&](ImageEngine& e) {
                return keyEachSpan(e, keep, invert, [&](const Pixel* p, size_t count, uint8_t* mattes) {
                    ASSERT_LE(count, kBatchPixels);
                    for (size_t i = 0; i < count; ++i) mattes[i] = matteOf(p[i]);
                });
            };
            const Picture source = Picture::random(131, 17);
            const Picture keyed = source.after(byPixel);
            EXPECT_EQ(source.after(bySpan), keyed);
            EXPECT_TRUE(test::sameColour(keyed, source));
            EXPECT_FALSE(test::sameAlpha(keyed, source));
            test::expectSameForAnyBands(byPixel);
            test::expectSameForAnyBands(bySpan);
        }
}

}  // namespace
}  // namespace krl
