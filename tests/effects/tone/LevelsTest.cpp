#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

#include "effects/tone/ToneCurves.h"
#include "reference/PointReference.h"

namespace krl::test {
namespace {

TEST(Levels, TouchesTheBytesOfItsChannelAlone) {
    const Picture source = Picture::random(16, 16, 21);
    const auto through = [&](LevelsChannel channel) {
        return source.after([=](ImageEngine& e) { return levels(e, 30, 1.4f, 200, 10, 240, channel); });
    };
    const Picture all = through(LevelsChannel::RGBA);
    const std::pair<LevelsChannel, std::vector<size_t>> touched[] = {
        {LevelsChannel::RGB, {0, 1, 2}}, {LevelsChannel::Blue, {0}},  {LevelsChannel::Green, {1}},
        {LevelsChannel::Red, {2}},       {LevelsChannel::Alpha, {3}}, {LevelsChannel::None, {}}};
    for (const auto& [channel, bytes] : touched) {
        Picture expected = source;
        for (size_t i = 0; i < expected.pixels().size(); ++i)
            for (size_t byte : bytes) expected.pixels()[i][byte] = all.pixels()[i][byte];
        EXPECT_EQ(through(channel), expected) << int(channel);
    }
}

TEST(Levels, SpreadsOneRangeOverAnother) {
    expectIdentity([](ImageEngine& e) { return levels(e, 0, 1.0f, 255, 0, 255, LevelsChannel::RGB); });
    const auto curve =
        curveOf([](ImageEngine& e) { return levels(e, 50, 1.0f, 150, 100, 200, LevelsChannel::RGB); });
    EXPECT_EQ(curve[0], 100);
    EXPECT_EQ(curve[50], 100);
    EXPECT_NEAR(curve[100], 150, 1);
    EXPECT_EQ(curve[150], 199);  // the upper level, rounded to single precision, lies just above it
    EXPECT_EQ(curve[151], 200);
    EXPECT_EQ(curve[255], 200);
}

TEST(Levels, StepsAtOnceWhereTheRangeIsEmpty) {
    const auto curve =
        curveOf([](ImageEngine& e) { return levels(e, 128, 1.0f, 128, 0, 255, LevelsChannel::RGB); });
    EXPECT_EQ(curve[127], 0);
    EXPECT_EQ(curve[129], 255);
    const auto nothing =
        curveOf([](ImageEngine& e) { return levels(e, 0, 1.0f, 0, 0, 255, LevelsChannel::RGB); });
    EXPECT_EQ(nothing[0], 0);  // nothing over nothing is no number, and that is black
    EXPECT_EQ(nothing[1], 255);
}

TEST(Levels, FollowsItsStepsForManySettings) {
    for (float gamma : {0.0f, 0.1f, 0.7f, 1.0f, 2.2f, 9.99f, 50.0f, -3.0f, kInfinity, kNotANumber})
        for (auto [min, max, outMin, outMax] : {std::array{0, 255, 0, 255},
                                                {-50, 300, -1, 999},
                                                {40, 200, 220, 10},
                                                {200, 40, 0, 255},
                                                {255, 255, 7, 9}}) {
            const auto curve =
                curveOf([=, min = min, max = max, outMin = outMin, outMax = outMax](ImageEngine& e) {
                    return levels(e, min, gamma, max, outMin, outMax, LevelsChannel::RGB);
                });
            for (int i = 0; i < 256; ++i)
                ASSERT_EQ(curve[size_t(i)], reference::levels(i, min, gamma, max, outMin, outMax))
                    << i << ' ' << gamma << ' ' << min << ' ' << max;
        }
}

}  // namespace
}  // namespace krl::test
