#include <gtest/gtest.h>

#include <utility>

#include "kernels/blur/TentBlur.h"
#include "krlimage/tone.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

auto steps(int32_t preBlur, int32_t threshold, int32_t count, ChannelTarget target) {
    return [=](ImageEngine& engine) { return thresholdPro(engine, preBlur, threshold, count, target); };
}

TEST(ThresholdPro, OneStepPartsThePictureInTwo) {
    const Picture result = Picture::ramp().after(steps(0, 100, 1, ChannelTarget::RGB));
    for (int32_t x = 0; x < 256; ++x) EXPECT_EQ(result.at(x, 0).red, x < 100 ? 0 : 255) << x;
}

TEST(ThresholdPro, LowHalfRestsOnLowerEdgesAndHighHalfOnUpper) {
    const Picture result = Picture::ramp().after(steps(0, 100, 2, ChannelTarget::RGB));
    // Steps of 50 below and of 77.5 above.
    for (const auto& [level, expected] :
         {std::pair{0, 0}, {49, 0}, {50, 50}, {99, 50}, {100, 177}, {177, 177}, {178, 255}, {255, 255}})
        EXPECT_EQ(result.at(level, 0).green, expected) << level;
}

TEST(ThresholdPro, EndlessStepsGiveBlack) {
    for (int32_t threshold : {0, 100, 255})
        EXPECT_EQ(Picture::ramp().after(steps(0, threshold, 0, ChannelTarget::RGB)), Picture(256, 1));
}

TEST(ThresholdPro, NegativeStepsAreOneLevelHigh) {
    const Picture result = Picture::ramp().after(steps(0, 100, -7, ChannelTarget::RGB));
    EXPECT_EQ(result.at(60, 0).red, 60);
    EXPECT_EQ(result.at(99, 0).red, 99);
    EXPECT_EQ(result.at(100, 0).red, 101);
    EXPECT_EQ(result.at(200, 0).red, 201);
    EXPECT_EQ(result.at(255, 0).red, 255);
}

TEST(ThresholdPro, UpperEdgePastWhiteWrapsToBlack) {
    // With the threshold at 255 the step above it is raised to 1 and ends at 256.
    const Picture result = Picture::ramp().after(steps(0, 300, 1, ChannelTarget::RGB));
    EXPECT_EQ(result.at(255, 0).red, 0);
}

TEST(ThresholdPro, WorksOnTheMeanColourOrOnAlpha) {
    const Picture picture(1, {{0, 100, 202, 30}});
    EXPECT_EQ(picture.after(steps(0, 100, 1, ChannelTarget::RGB)), Picture(1, {{255, 255, 255, 30}}));
    EXPECT_EQ(picture.after(steps(0, 20, 1, ChannelTarget::Alpha)), Picture(1, {{0, 100, 202, 255}}));
}

TEST(ThresholdPro, BlursBeforeItParts) {
    const Picture picture = Picture::random(23, 12);
    Picture blurred = picture;
    EXPECT_EQ(TentBlur(EngineOf(1)).blurRGB(blurred.pixels().data(), 12, 23, 5), kStatusOk);
    EXPECT_EQ(picture.after(steps(5, 120, 3, ChannelTarget::RGB)),
              blurred.after(steps(0, 120, 3, ChannelTarget::RGB)));
}

TEST(ThresholdPro, WorksOnTheChosenChannelsForAnyBands) {
    const Picture picture = Picture::random(21, 13);
    for (ChannelTarget target : {ChannelTarget::RGB, ChannelTarget::Alpha}) {
        expectSameForAnyBands(steps(2, 100, 3, target));
        expectStateTests(steps(1, 9, 9, target));
    }
    EXPECT_TRUE(sameAlpha(picture.after(steps(1, 9, 9, ChannelTarget::RGB)), picture));
    EXPECT_TRUE(sameColour(picture.after(steps(1, 9, 9, ChannelTarget::Alpha)), picture));
}

}  // namespace
}  // namespace krl::test
