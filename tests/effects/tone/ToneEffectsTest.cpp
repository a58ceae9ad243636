#include <gtest/gtest.h>

#include <limits>
#include <new>

#include "effects/tone/ToneEffects.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr auto kRGB = ChannelTarget::RGB;
constexpr auto kAlpha = ChannelTarget::Alpha;

using Effect = std::function<Status(ImageEngine&)>;

/// What an effect on `RGB` makes of each grey level.
std::vector<int> curveOf(const Effect& effect) {
    const Picture result = Picture::ramp().after(effect);
    std::vector<int> curve;
    for (const Pixel& p : result.pixels()) {
        EXPECT_EQ(p.blue, p.green);
        EXPECT_EQ(p.blue, p.red);
        EXPECT_EQ(p.alpha, 255);
        curve.push_back(p.blue);
    }
    return curve;
}

void expectIdentity(const Effect& effect) {
    const Picture source = Picture::random(23, 19, 3);
    EXPECT_EQ(source.after(effect), source);
}

/// Expects that the effect with `RGB` leaves alpha, with `Alpha` leaves colour, and treats the bytes
/// alike.
void expectTargetsKeptApart(const std::function<Status(ImageEngine&, ChannelTarget)>& effect) {
    const Picture source = Picture::random(29, 13, 4);
    const Picture colour = source.after([&](ImageEngine& e) { return effect(e, kRGB); });
    const Picture alpha = source.after([&](ImageEngine& e) { return effect(e, kAlpha); });
    EXPECT_TRUE(sameAlpha(colour, source));
    EXPECT_TRUE(sameColour(alpha, source));
    EXPECT_FALSE(sameColour(colour, source));
    EXPECT_FALSE(sameAlpha(alpha, source));
}

TEST(Brightness, SaturatesAtWhiteAndKeepsAlpha) {
    const Picture source = Picture::random(9, 7, 2);
    const Picture white = source.after([](ImageEngine& e) { return brightness(e, 300, kRGB); });
    EXPECT_TRUE(sameColour(white, Picture(9, 7, {255, 255, 255, 0})));
    EXPECT_TRUE(sameAlpha(white, source));
}

TEST(Brightness, AddsAndTakesAway) {
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return brightness(e, 40, kRGB); }),
              Picture(1, {{40, 140, 255, 9}}));
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return brightness(e, -40, kRGB); }),
              Picture(1, {{0, 60, 210, 9}}));
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return brightness(e, -4, kAlpha); }),
              Picture(1, {{0, 100, 250, 5}}));
    expectIdentity([](ImageEngine& e) { return brightness(e, 0, kRGB); });
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return brightness(e, 31, t); });
}

TEST(Brightness, WrapsBeyondAllIntegers) {
    const auto curve = curveOf([](ImageEngine& e) { return brightness(e, 2147483647, kRGB); });
    EXPECT_EQ(curve[0], 255);
    EXPECT_EQ(curve[1], 0);
}

/// The effect with the wide path on.
Effect wide(const Effect& effect) {
    return [effect](ImageEngine& e) {
        e.selectInstructionSet(2);
        const Status status = effect(e);
        e.selectInstructionSet(3);
        return status;
    };
}

TEST(BrightnessWide, EqualsThePlainPathForBytes) {
    const Picture source = Picture::random(37, 11, 12);
    for (int32_t by : {0, 1, 40, 254, 255, -1, -77, -255})
        for (ChannelTarget target : {kRGB, kAlpha}) {
            const auto effect = [=](ImageEngine& e) { return brightness(e, by, target); };
            EXPECT_EQ(source.after(wide(effect)), source.after(effect)) << by;
        }
}

TEST(BrightnessWide, CountsTheLowByteOfTheMagnitude) {
    expectIdentity(wide([](ImageEngine& e) { return brightness(e, 256, kRGB); }));
    expectIdentity(wide([](ImageEngine& e) { return brightness(e, -512, kAlpha); }));
    expectIdentity(wide([](ImageEngine& e) { return brightness(e, -2147483647 - 1, kRGB); }));
    const Picture source = Picture::random(8, 8);
    EXPECT_EQ(source.after(wide([](ImageEngine& e) { return brightness(e, 300, kRGB); })),
              source.after([](ImageEngine& e) { return brightness(e, 44, kRGB); }));
    expectSameForAnyBands(wide([](ImageEngine& e) { return brightness(e, 17, kRGB); }));
}

TEST(Contrast, TurnsAround127) {
    const auto flat = curveOf([](ImageEngine& e) { return contrast(e, 0.0f, kRGB); });
    EXPECT_EQ(flat, std::vector<int>(256, 127));
    expectIdentity([](ImageEngine& e) { return contrast(e, 1.0f, kRGB); });
    const auto doubled = curveOf([](ImageEngine& e) { return contrast(e, 2.0f, kRGB); });
    EXPECT_EQ(doubled[127], 127);
    EXPECT_EQ(doubled[100], 73);
    EXPECT_EQ(doubled[128], 129);
    EXPECT_EQ(doubled[60], 0);
    EXPECT_EQ(doubled[200], 255);
    const auto inverted = curveOf([](ImageEngine& e) { return contrast(e, -1.0f, kRGB); });
    EXPECT_EQ(inverted[0], 254);
    EXPECT_EQ(inverted[254], 0);
    EXPECT_EQ(inverted[255], 0);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return contrast(e, 1.5f, t); });
}

TEST(Contrast, DividesTowardZero) {
    // 1.4 * 1024 is 1433 whole: one step from the middle stays one, either way.
    const auto curve = curveOf([](ImageEngine& e) { return contrast(e, 1.4f, kRGB); });
    EXPECT_EQ(curve[126], 126);
    EXPECT_EQ(curve[128], 128);
    EXPECT_EQ(curve[130], 131);
}

TEST(Contrast, SurvivesFactorsBeyondAllIntegers) {
    for (float factor : {kInfinity, -kInfinity, kNotANumber, 3e38f})
        // The factor becomes the smallest integer; its multiples wrap to 0 or to itself.
        for (int i : {1, 126, 128, 254}) {
            const int odd = (i - 127) % 2 != 0;
            EXPECT_EQ(curveOf([=](ImageEngine& e) { return contrast(e, factor, kRGB); })[size_t(i)],
                      odd ? 0 : 127);
        }
}

TEST(Gamma, WorksOnTheScaleOfBytes) {
    expectIdentity([](ImageEngine& e) { return gamma(e, 1.0f, kRGB); });
    const auto root = curveOf([](ImageEngine& e) { return gamma(e, 2.0f, kRGB); });
    EXPECT_EQ(root[255], 15);
    EXPECT_EQ(root[16], 4);
    EXPECT_EQ(root[15], 3);
    const auto square = curveOf([](ImageEngine& e) { return gamma(e, 0.5f, kRGB); });
    EXPECT_EQ(square[15], 225);
    EXPECT_EQ(square[16], 255);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return gamma(e, 1.2f, t); });
}

TEST(Gamma, TakesZeroNegativeAndNoNumber) {
    const auto infinite = curveOf([](ImageEngine& e) { return gamma(e, 0.0f, kRGB); });
    EXPECT_EQ(infinite[0], 0);
    EXPECT_EQ(infinite[1], 1);
    EXPECT_EQ(infinite[2], 255);
    const auto inverse = curveOf([](ImageEngine& e) { return gamma(e, -1.0f, kRGB); });
    EXPECT_EQ(inverse[0], 255);
    EXPECT_EQ(inverse[1], 1);
    EXPECT_EQ(inverse[2], 0);
    const auto none = curveOf([](ImageEngine& e) { return gamma(e, kNotANumber, kRGB); });
    EXPECT_EQ(none[0], 0);
    EXPECT_EQ(none[1], 1);  // one to any power
    EXPECT_EQ(none[200], 0);
}

TEST(Invert, ComplementsItsTargetAndUndoesItself) {
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return invert(e, kRGB); }),
              Picture(1, {{255, 155, 5, 9}}));
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return invert(e, kAlpha); }),
              Picture(1, {{0, 100, 250, 246}}));
    expectIdentity([](ImageEngine& e) {
        invert(e, kRGB);
        return invert(e, kRGB);
    });
}

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

TEST(Posterise, DropsInnerBytesToTheirBoundAndTheTopBandToWhite) {
    const auto halves = curveOf([](ImageEngine& e) { return posterise(e, 2, kRGB); });
    EXPECT_EQ(halves[126], 0);
    EXPECT_EQ(halves[127], 127);  // on the bound
    EXPECT_EQ(halves[128], 255);
    const auto quarters = curveOf([](ImageEngine& e) { return posterise(e, 4, kRGB); });
    EXPECT_EQ(quarters[62], 0);
    EXPECT_EQ(quarters[63], 63);
    EXPECT_EQ(quarters[100], 63);
    EXPECT_EQ(quarters[190], 127);
    EXPECT_EQ(quarters[191], 191);
    EXPECT_EQ(quarters[254], 255);
    const auto whole = curveOf([](ImageEngine& e) { return posterise(e, 1, kRGB); });
    EXPECT_EQ(whole[254], 0);
    EXPECT_EQ(whole[255], 255);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return posterise(e, 5, t); });
}

TEST(Posterise, LeavesEverythingWithoutBands) {
    expectIdentity([](ImageEngine& e) { return posterise(e, 0, kRGB); });
}

TEST(Posterise, HasNoMemoryForANegativeNumberOfBands) {
    const Picture source = Picture::random(9, 9);
    for (int32_t level : {-1, -2147483647 - 1}) {
        const auto effect = [=](ImageEngine& e) { return posterise(e, level, kRGB); };
        Picture picture = source;
        EXPECT_THROW(picture.apply(effect), std::bad_alloc) << level;
        EXPECT_EQ(picture, source) << level;
        expectStateTests(effect);
    }
}

TEST(Posterise, WalksItsBandsAsTheyStandInMemory) {
    for (int level = 1; level <= 1000; ++level) {
        const auto bounds = reference::bandBounds(level, 255);
        const auto curve = curveOf([=](ImageEngine& e) { return posterise(e, level, kRGB); });
        for (int i = 0; i < 256; ++i)
            ASSERT_EQ(curve[size_t(i)], reference::walkBands(i, bounds, 255)) << level << ' ' << i;
    }
}

TEST(Solarise, ReversesAbove128) {
    const auto curve = curveOf([](ImageEngine& e) { return solarise(e, kRGB); });
    EXPECT_EQ(curve[128], 128);
    EXPECT_EQ(curve[129], 126);
    EXPECT_EQ(curve[255], 0);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return solarise(e, t); });
}

TEST(SuperContrast, SpreadsItsRangeOverAllLevels) {
    expectIdentity([](ImageEngine& e) { return superContrast(e, 0, 255, kRGB); });
    expectIdentity([](ImageEngine& e) { return superContrast(e, -9, 999, kAlpha); });
    const auto curve = curveOf([](ImageEngine& e) { return superContrast(e, 64, 191, kRGB); });
    EXPECT_EQ(curve[63], 0);
    EXPECT_EQ(curve[64], 0);
    EXPECT_EQ(curve[65], 2);
    EXPECT_EQ(curve[191], 254);
    EXPECT_EQ(curve[192], 255);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return superContrast(e, 50, 150, t); });
}

TEST(SuperContrast, TestsTheUpperLevelFirst) {
    const auto crossed = curveOf([](ImageEngine& e) { return superContrast(e, 200, 100, kRGB); });
    EXPECT_EQ(crossed[100], 0);
    EXPECT_EQ(crossed[101], 255);
    const auto touching = curveOf([](ImageEngine& e) { return superContrast(e, 50, 49, kRGB); });
    EXPECT_EQ(touching[49], 0);
    EXPECT_EQ(touching[50], 255);
    const auto single = curveOf([](ImageEngine& e) { return superContrast(e, 100, 100, kRGB); });
    EXPECT_EQ(single[100], 0);
    EXPECT_EQ(single[101], 255);
}

TEST(Threshold, CutsByTheMeanOfColourOrByAlpha) {
    const Picture source(1, {{10, 20, 33, 50}, {10, 20, 36, 51}});  // means 21 and 22
    EXPECT_EQ(source.after([](ImageEngine& e) { return threshold(e, 21, kRGB); }),
              Picture(1, {{0, 0, 0, 50}, {255, 255, 255, 51}}));
    EXPECT_EQ(source.after([](ImageEngine& e) { return threshold(e, 50, kAlpha); }),
              Picture(1, {{10, 20, 33, 0}, {10, 20, 36, 255}}));
}

TEST(Threshold, IsLimitedToBytes) {
    EXPECT_EQ(curveOf([](ImageEngine& e) { return threshold(e, 255, kRGB); }), std::vector<int>(256, 0));
    EXPECT_EQ(curveOf([](ImageEngine& e) { return threshold(e, 9999, kRGB); }), std::vector<int>(256, 0));
    const auto lowest = curveOf([](ImageEngine& e) { return threshold(e, -5, kRGB); });
    EXPECT_EQ(lowest[0], 0);
    EXPECT_EQ(lowest[1], 255);
}

TEST(Exposure, IsIdentityAtRest) {
    expectIdentity([](ImageEngine& e) { return exposure(e, 0.0f, 0.0f, 1.0f); });
}

TEST(Exposure, ScalesLight) {
    const auto brighter = curveOf([](ImageEngine& e) { return exposure(e, 1.0f, 0.0f, 1.0f); });
    EXPECT_EQ(brighter[100], 137);  // times exp(0.315)
    EXPECT_EQ(brighter[200], 255);
    const auto darker = curveOf([](ImageEngine& e) { return exposure(e, -1.0f, 0.0f, 1.0f); });
    EXPECT_EQ(darker[100], 72);
    EXPECT_EQ(darker[255], 186);
}

TEST(Exposure, LiftsAndLowersByItsOffset) {
    const auto lifted = curveOf([](ImageEngine& e) { return exposure(e, 0.0f, 0.5f, 1.0f); });
    EXPECT_EQ(lifted[0], 187);  // log10(11) * 180
    EXPECT_EQ(lifted[255], 255);
    const auto lowered = curveOf([](ImageEngine& e) { return exposure(e, 0.0f, -0.5f, 1.0f); });
    EXPECT_EQ(lowered[0], 0);
    EXPECT_EQ(lowered[255], 182);  // 255 * (2 - exp(0.25))
}

TEST(Exposure, BendsOnTheScaleOfBytesAndLimitsItsArguments) {
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, 0.0f, 0.0f, 2.0f); })[255], 15);
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, 99.0f, 9.0f, 1.0f); }),
              curveOf([](ImageEngine& e) { return exposure(e, 20.0f, 0.5f, 1.0f); }));
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, -kInfinity, -9.0f, 0.0f); }),
              curveOf([](ImageEngine& e) { return exposure(e, -20.0f, -0.5f, 0.1f); }));
    EXPECT_EQ(curveOf([](ImageEngine& e) { return exposure(e, kNotANumber, 0.0f, 1.0f); }),
              std::vector<int>(256, 0));
}

TEST(MediumTones, BringsTheMeanNearTheLevel) {
    // Means 150, 15 and 0; each is counted one higher.
    EXPECT_EQ(Picture(1, {{100, 10, 0, 3}, {200, 20, 0, 4}}).after([](ImageEngine& e) {
        return mediumTones(e, 75);
    }),
              Picture(1, {{49, 46, 0, 3}, {99, 93, 0, 4}}));
}

TEST(MediumTones, TakesAnyLevel) {
    const Picture source = Picture::random(5, 5);
    const Picture black(5, 5, {0, 0, 0, 0});
    EXPECT_TRUE(sameColour(source.after([](ImageEngine& e) { return mediumTones(e, -10); }), black));
    EXPECT_TRUE(sameColour(source.after([](ImageEngine& e) { return mediumTones(e, 0); }), black));
    const Picture extreme = source.after([](ImageEngine& e) { return mediumTones(e, 2147483647); });
    EXPECT_TRUE(sameAlpha(extreme, source));
}

TEST(MediumTones, CountsInIntegersThatWrap) {
    // 3000 * 2810 whites sum to more than the largest integer: a negative mean, and black.
    Picture white(3000, 2810, {255, 1, 255, 9});
    EXPECT_EQ(white.apply([](ImageEngine& e) { return mediumTones(e, 128); }), kStatusOk);
    EXPECT_EQ(white.at(17, 2000), (Pixel{0, 64, 0, 9}));
}

TEST(MediumTones, RefusesWithoutPicture) {
    ImageEngine engine;
    EXPECT_EQ(mediumTones(engine, 100), kStatusRefused);
    std::vector<uint32_t> pixels(4, 0x10203040);
    engine.load(reinterpret_cast<uint8_t*>(pixels.data()), {2, 2, 8, 0, 0, 0});
    engine.unload();
    EXPECT_EQ(mediumTones(engine, 100), kStatusRefused);
    EXPECT_EQ(pixels, std::vector<uint32_t>(4, 0x10203040));
}

/// Every effect of the family that works in bands.
const Effect kBanded[] = {
    [](ImageEngine& e) { return brightness(e, 30, kRGB); },
    [](ImageEngine& e) { return contrast(e, 1.3f, kAlpha); },
    [](ImageEngine& e) { return gamma(e, 1.1f, kRGB); },
    [](ImageEngine& e) { return invert(e, kRGB); },
    [](ImageEngine& e) { return levels(e, 10, 1.1f, 245, 0, 255, LevelsChannel::Green); },
    [](ImageEngine& e) { return levels(e, 10, 1.1f, 245, 0, 255, LevelsChannel::None); },
    [](ImageEngine& e) { return posterise(e, 5, kRGB); },
    [](ImageEngine& e) { return posterise(e, 0, kRGB); },
    [](ImageEngine& e) { return solarise(e, kRGB); },
    [](ImageEngine& e) { return superContrast(e, 20, 180, kRGB); },
    [](ImageEngine& e) { return threshold(e, 120, kRGB); },
    [](ImageEngine& e) { return threshold(e, 120, kAlpha); },
    [](ImageEngine& e) { return exposure(e, 1.0f, 0.1f, 1.1f); },
};

TEST(ToneEffects, GiveTheSameBytesForAnyBands) {
    for (const Effect& effect : kBanded) expectSameForAnyBands(effect);
    expectSameForAnyBands([](ImageEngine& e) { return mediumTones(e, 90); });
}

TEST(ToneEffects, TestTheStateFirst) {
    for (const Effect& effect : kBanded) expectStateTests(effect);
}

}  // namespace
}  // namespace krl::test
