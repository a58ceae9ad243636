#include <gtest/gtest.h>

#include <utility>

#include "core/Numbers.h"
#include "krlimage/film.h"
#include "reference/FilmReference.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

constexpr auto kRgba = ChannelTarget::RGBA, kRgb = ChannelTarget::RGB, kAlpha = ChannelTarget::Alpha;

Picture noised(const Picture& picture, float varience, int32_t seed, ChannelTarget target,
               int32_t bands = 1) {
    return picture.after([=](ImageEngine& e) { return noise(e, varience, seed, target); }, bands);
}

TEST(Noise, ReadsOneDrawForEachPixelOfASequenceWithOneForEachByte) {
    for (const auto& [width, height] : {std::pair{1, 1}, {31, 12}, {5, 7}}) {
        const Picture source = Picture::random(width, height);
        for (int32_t bands : {1, 2, 3, 4}) {
            const int32_t bandPixels = ceilingShare(width * height, bands);
            for (float varience : {0.0004f, 0.001f, 0.15f, 2.0f, 40.0f}) {
                for (ChannelTarget target : {kRgba, kRgb, kAlpha}) {
                    Picture expected = source;
                    expected.pixels() = reference::noised(source.pixels(), bandPixels, varience, 42,
                                                          target != kAlpha, target != kRgb);
                    ASSERT_EQ(noised(source, varience, 42, target, bands), expected)
                        << varience << " in " << bands;
                }
            }
        }
    }
}

TEST(Noise, DependsOnTheBandsAndTheSeed) {
    const Picture grey(64, 64, {128, 128, 128, 128});
    EXPECT_EQ(noised(grey, 0.3f, 5, kRgba), noised(grey, 0.3f, 5, kRgba));
    EXPECT_NE(noised(grey, 0.3f, 5, kRgba), noised(grey, 0.3f, 6, kRgba));
    EXPECT_NE(noised(grey, 0.3f, 5, kRgba, 1), noised(grey, 0.3f, 5, kRgba, 2));
}

TEST(Noise, IsMonochromeOnColourAndLeavesBlackAlone) {
    const Picture noisy = noised(Picture(40, 40, {100, 100, 100, 255}), 0.5f, 1, kRgb);
    for (const Pixel& p : noisy.pixels())
        EXPECT_TRUE(p.blue == p.green && p.green == p.red && p.alpha == 255);
    EXPECT_EQ(noised(Picture(9, 9), 0.9f, 1, kRgb), Picture(9, 9));
}

TEST(Noise, WithoutVarienceChangesNothingButTestsTheState) {
    const Picture source = Picture::random(9, 9);
    for (float varience : {0.0f, -0.0f, -2.0f, -kInfinity})
        EXPECT_EQ(noised(source, varience, 3, kRgba), source);
    expectStateTests([](ImageEngine& e) { return noise(e, 0, 1, kRgb); });
}

TEST(Noise, TakesAnyVarience) {
    for (float varience : {1e6f, 2.2e6f, 1e9f, kInfinity, kNotANumber})
        for (int32_t seed : {0, -1, INT32_MIN, INT32_MAX})
            noised(Picture::random(7, 7), varience, seed, kRgba, 3);
}

}  // namespace
}  // namespace krl::test
