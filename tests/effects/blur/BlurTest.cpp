#include <gtest/gtest.h>

#include <limits>

#include "core/Faults.h"
#include "kernels/curve/EdgeGain.h"
#include "krlimage/blur.h"
#include "reference/TentBlurReference.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr auto kRgba = ChannelTarget::RGBA, kRgb = ChannelTarget::RGB, kAlpha = ChannelTarget::Alpha;

Picture blurred(Picture picture, int32_t radius, size_t first, size_t last) {
    picture.pixels() =
        reference::tentPixels(picture.pixels(), picture.height(), picture.width(), radius, first, last);
    return picture;
}

Picture blurred(const Picture& picture, int32_t radius, ChannelTarget target) {
    return blurred(picture, radius, target == kAlpha ? 3 : 0, target == kRgb ? 2 : 3);
}

Picture fastBlur(const Picture& picture, int32_t radius, ChannelTarget target) {
    return picture.after([=](ImageEngine& e) { return fastGaussianBlur(e, radius, target); }, 2);
}

Picture defocused(const Picture& picture, int32_t blur, float bloom, ChannelTarget target) {
    return picture.after([=](ImageEngine& e) { return defocus(e, blur, bloom, target); });
}

Picture diffused(const Picture& picture, int32_t blur, float opacity, ChannelTarget target,
                 SampleQuality quality = SampleQuality::Standard) {
    return picture.after([=](ImageEngine& e) { return diffuse(e, blur, opacity, quality, target); });
}

}  // namespace

TEST(FastGaussianBlur, BlursTheChosenBytes) {
    const Picture source = Picture::random(33, 20);
    EXPECT_EQ(fastBlur(source, 5, kRgba), blurred(source, 5, 0, 3));
    EXPECT_EQ(fastBlur(source, 5, kRgb), blurred(source, 5, 0, 2));
    EXPECT_EQ(fastBlur(source, 5, kAlpha), blurred(source, 5, 3, 3));
    EXPECT_EQ(fastBlur(source, 5, ChannelTarget::Single), blurred(source, 5, 0, 0));
}

TEST(FastGaussianBlur, WithoutARadiusChangesNothingButTestsTheState) {
    const Picture source = Picture::random(9, 9);
    for (int32_t radius : {0, -1, -1000, INT32_MIN}) EXPECT_EQ(fastBlur(source, radius, kRgba), source);
    expectStateTests([](ImageEngine& e) { return fastGaussianBlur(e, 0, kRgb); });
}

TEST(FastGaussianBlur, IsTheSameForAnyBands) {
    for (ChannelTarget target : {kRgba, kRgb, kAlpha, ChannelTarget::Single})
        expectSameForAnyBands([=](ImageEngine& e) { return fastGaussianBlur(e, 8, target); });
}

TEST(FastGaussianBlur, SaysNothingWhenItsThreadsCannotBeHad) {
    Picture picture = Picture::random(9, 9);
    const Picture source = picture;
    faults().threads = 0;
    EXPECT_EQ(picture.apply([](ImageEngine& e) { return fastGaussianBlur(e, 4, kRgba); }, 2), kStatusOk);
    faults().threads = -1;
    EXPECT_EQ(picture, source);
}

TEST(BlurProRgb, BlursEachColourByItsOwnRadius) {
    const Picture source = Picture::random(25, 30);
    EXPECT_EQ(source.after([](ImageEngine& e) { return blurProRGB(e, 3, 0, 12); }, 3),
              blurred(blurred(source, 3, 2, 2), 12, 0, 0));
    EXPECT_EQ(source.after([](ImageEngine& e) { return blurProRGB(e, -4, 6, 0); }), blurred(source, 6, 1, 1));
    EXPECT_EQ(source.after([](ImageEngine& e) { return blurProRGB(e, 0, 0, 0); }), source);
    expectStateTests([](ImageEngine& e) { return blurProRGB(e, 0, 0, 0); });
}

// The planes have no threads that could fail; splitting and merging them has.
TEST(BlurProRgb, FailsWhenItsThreadsCannotBeHad) {
    Picture picture = Picture::random(9, 9);
    const Picture source = picture;
    faults().threads = 0;
    EXPECT_EQ(picture.apply([](ImageEngine& e) { return blurProRGB(e, 4, 0, 2); }, 2), kStatusThreadFailed);
    faults().threads = -1;
    EXPECT_EQ(picture, source);
}

TEST(Defocus, LiftsColourByTheBloom) {
    const Picture lifted = defocused(Picture::ramp(), 0, 0.5f, kRgba);
    EXPECT_EQ(lifted.at(0, 0).green, 0);
    EXPECT_EQ(lifted.at(51, 0).green, 102);
    EXPECT_EQ(lifted.at(128, 0).green, 255);
    EXPECT_TRUE(sameAlpha(lifted, Picture::ramp()));
}

TEST(Defocus, WithoutBloomIsTheIdentityUpToTruncation) {
    const Picture flat = defocused(Picture::ramp(), 0, -3.0f, kRgb);
    for (int32_t x = 0; x < 256; ++x) {
        const int32_t level = flat.at(x, 0).red;
        EXPECT_TRUE(level == x || level == x - 1) << x;
    }
    EXPECT_EQ(flat.at(255, 0).red, 255);
}

TEST(Defocus, LimitsTheBloom) {
    const Picture most = defocused(Picture::ramp(), 0, 0.8f, kRgb);
    EXPECT_EQ(most.at(10, 0).blue, 50);
    for (float bloom : {0.81f, 7.0f, kInfinity}) EXPECT_EQ(defocused(Picture::ramp(), 0, bloom, kRgb), most);
    EXPECT_EQ(defocused(Picture::ramp(), 0, kNaN, kRgb), Picture(256, 1));
}

TEST(Defocus, BlursBeforeItLifts) {
    const Picture source = Picture::random(21, 13);
    for (ChannelTarget target : {kRgba, kRgb})
        EXPECT_EQ(defocused(source, 6, 0.25f, target),
                  defocused(blurred(source, 6, target), 0, 0.25f, target));
    expectStateTests([](ImageEngine& e) { return defocus(e, 1, 0.5f, kRgb); });
    expectSameForAnyBands([](ImageEngine& e) { return defocus(e, 2, 0.5f, kRgba); });
}

TEST(Diffuse, AtFullOpacityIsThePictureAndAtNoneItsBlur) {
    const Picture source = Picture::random(27, 16);
    for (ChannelTarget target : {kRgba, kRgb, kAlpha}) {
        for (float opacity : {1.0f, 2.5f, kInfinity}) EXPECT_EQ(diffused(source, 7, opacity, target), source);
        for (float opacity : {0.0f, -1.0f})
            EXPECT_EQ(diffused(source, 7, opacity, target), blurred(source, 7, target));
    }
}

TEST(Diffuse, MixesAndTruncates) {
    const Picture source = Picture::random(27, 16);
    const Picture soft = blurred(source, 4, 0, 3);
    const Picture mixed = diffused(source, 4, 0.25f, kRgba);
    for (size_t i = 0; i < mixed.pixels().size(); ++i)
        for (size_t channel = 0; channel < 4; ++channel)
            ASSERT_EQ(mixed.pixels()[i][channel],
                      int(source.pixels()[i][channel] * 0.25 + soft.pixels()[i][channel] * 0.75));
    EXPECT_EQ(diffused(source, 4, 0.25f, kRgba, SampleQuality::Antialiased), mixed);
}

TEST(Diffuse, IsTheMixOfSharesThatAMoveFromTheBlurIs) {
    for (float opacity : {0.0f, 1.0f, 0.5f, 0.25f, 0.3f, 1 / 3.0f, 0.7f, 0.99999994f, 0.001f, 0x1p-20f}) {
        const auto whole = wholeGain(opacity);
        ASSERT_TRUE(whole) << opacity;
        for (int32_t sharp = 0; sharp < 256; ++sharp)
            for (int32_t soft = 0; soft < 256; ++soft)
                ASSERT_EQ((*whole)(soft, sharp - soft),
                          truncatedByte(sharp * double{opacity} + soft * (1.0 - opacity)))
                    << opacity << ' ' << sharp << ' ' << soft;
    }
}

TEST(Diffuse, TakesTheSmallestOpacities) {
    const Picture source = Picture::random(27, 16);
    const Picture soft = blurred(source, 4, 0, 3);
    for (float opacity : {0x1p-21f, 1e-9f, 1e-30f}) {
        const Picture mixed = diffused(source, 4, opacity, kRgba);
        for (size_t i = 0; i < mixed.pixels().size(); ++i)
            for (size_t channel = 0; channel < 4; ++channel)
                ASSERT_EQ(mixed.pixels()[i][channel],
                          truncatedByte(source.pixels()[i][channel] * double{opacity} +
                                        soft.pixels()[i][channel] * (1.0 - opacity)));
    }
}

TEST(Diffuse, TouchesOnlyItsTarget) {
    const Picture source = Picture::random(27, 16);
    EXPECT_TRUE(sameAlpha(diffused(source, 4, 0.5f, kRgb), source));
    EXPECT_TRUE(sameColour(diffused(source, 4, 0.5f, kAlpha), source));
    EXPECT_EQ(diffused(source, 0, 0.5f, kRgba), source) << "no blur, but for the mix of equals";
    expectStateTests([](ImageEngine& e) { return diffuse(e, 1, 0.5f, SampleQuality::Standard, kRgb); });
    expectSameForAnyBands([](ImageEngine& e) { return diffuse(e, 3, 0.3f, SampleQuality::Standard, kRgb); });
}

TEST(Diffuse, OfAnUnknowableOpacityIsBlack) {
    EXPECT_EQ(diffused(Picture::random(3, 3), 1, kNaN, kRgba), Picture(3, 3, {0, 0, 0, 0}));
}

TEST(OneChannelFeather, BlursAlphaAlone) {
    const Picture source = Picture::random(18, 18);
    for (SampleQuality quality : {SampleQuality::Standard, SampleQuality::Bilinear}) {
        const auto feathered = [&](int32_t radius) {
            return source.after([=](ImageEngine& e) { return oneChannelFeather(e, radius, quality); });
        };
        EXPECT_EQ(feathered(5), blurred(source, 5, 3, 3));
        for (int32_t radius : {0, -1, -2, -5000, INT32_MIN}) EXPECT_EQ(feathered(radius), source);
    }
    expectStateTests([](ImageEngine& e) { return oneChannelFeather(e, -1, SampleQuality::Standard); });
}

}  // namespace krl::test
