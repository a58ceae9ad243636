#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <new>

#include "kernels/ramp/Curve.h"

namespace krl::test {

namespace {

CurveKey grey(int32_t level, float position) { return {level, level, level, position}; }

std::vector<float> positions(const std::vector<CurveKey>& keys) {
    std::vector<float> found;
    for (const CurveKey& key : keys) found.push_back(key.position);
    return found;
}

using Positions = std::vector<float>;

}  // namespace

TEST(CurveKeys, SortByPositionTruncatingWhatMovesUp) {
    std::vector<CurveKey> keys{grey(1, 3.75f), grey(2, 1.5f), grey(3, 2.5f)};
    sortCurveKeys(keys);
    EXPECT_EQ(positions(keys), (Positions{1.5f, 2.5f, 3.0f}));
    EXPECT_EQ(keys[0].red, 2);
    EXPECT_EQ(keys[1].red, 3);
    EXPECT_EQ(keys[2].red, 1);
}

TEST(CurveKeys, InOrderKeepTheirFractions) {
    std::vector<CurveKey> keys{grey(1, 0.25f), grey(2, 0.75f), grey(3, 9.5f)};
    sortCurveKeys(keys);
    EXPECT_EQ(positions(keys), (Positions{0.25f, 0.75f, 9.5f}));
}

// 2.9 moves past 2.5 and becomes 2, which is then out of order behind 2.5; the
// next pass exchanges them again, truncating 2.5.
TEST(CurveKeys, CanBeExchangedBackAfterATruncation) {
    std::vector<CurveKey> keys{grey(1, 2.9f), grey(2, 2.5f), grey(3, 9.0f)};
    sortCurveKeys(keys);
    EXPECT_EQ(positions(keys), (Positions{2.0f, 2.0f, 9.0f}));
    EXPECT_EQ(keys[0].red, 1);
    EXPECT_EQ(keys[1].red, 2);
}

TEST(CurveKeys, OfEqualPositionKeepTheirOrder) {
    std::vector<CurveKey> keys{grey(1, 5), grey(2, 5), grey(3, 0), grey(4, 5)};
    sortCurveKeys(keys);
    EXPECT_EQ(keys[0].red, 3);
    EXPECT_EQ(keys[1].red, 1);
    EXPECT_EQ(keys[2].red, 2);
    EXPECT_EQ(keys[3].red, 4);
}

TEST(CurveKeys, ArePaddedAtBothEndsInTheirNeighboursColour) {
    const auto padded = padCurveKeys(std::vector{grey(10, 20), grey(30, 80)}, 100);
    EXPECT_EQ(positions(padded), (Positions{0, 20, 80, 100}));
    EXPECT_EQ(padded.front().green, 10);
    EXPECT_EQ(padded.back().green, 30);
}

TEST(CurveKeys, AtBothEndsAreNotPadded) {
    EXPECT_EQ(positions(padCurveKeys(std::vector{grey(1, 0), grey(2, 255)}, 255)), (Positions{0, 255}));
}

TEST(CurveKeys, OnOnePlaceAreSeparatedInTurn) {
    EXPECT_EQ(positions(padCurveKeys(std::vector{grey(1, 50), grey(2, 50)}, 100)),
              (Positions{0, 50, 51, 100}));
    EXPECT_EQ(positions(padCurveKeys(std::vector{grey(1, 50), grey(2, 50), grey(3, 50)}, 100)),
              (Positions{0, 50, 51, 50, 100}));
}

TEST(CurveKeys, OfAnEmptyListAreBlack) {
    const auto padded = padCurveKeys({}, 255);
    EXPECT_EQ(positions(padded), (Positions{0, 255}));
    EXPECT_EQ(padded[0].red + padded[1].blue, 0);
}

// With equal diagonals the ten sweeps leave (-1/2)^10 of the first error, half the chord: both
// tangents are 1 / 2048 too long.
TEST(CurveSpline, BetweenTwoKeysIsAlmostStraight) {
    const auto samples = buildChannelCurve(std::vector{grey(0, 0), grey(100, 10)}, 1, 10);
    ASSERT_EQ(samples.size(), 101u);
    EXPECT_EQ(samples.front(), (CurveSample{0, 0}));
    EXPECT_EQ(samples[1].value, 1);
    EXPECT_EQ(samples[50], (CurveSample{50, 5}));
    EXPECT_EQ(samples[99].value, 98);
    EXPECT_EQ(samples.back(), (CurveSample{100, 10}));
    for (size_t k = 0; k < samples.size(); ++k) EXPECT_LE(std::abs(samples[k].value - int(k)), 1);
}

TEST(CurveSpline, SamplesAKnotInBothItsSegments) {
    const auto samples = buildChannelCurve(std::vector{grey(0, 0), grey(4, 2), grey(0, 7)}, 0, 7);
    ASSERT_EQ(samples.size(), 5u + 6u);
    EXPECT_EQ(samples[0], (CurveSample{0, 0}));
    EXPECT_EQ(samples[4], (CurveSample{4, 2}));
    EXPECT_EQ(samples[5], (CurveSample{4, 2}));
    EXPECT_EQ(samples[10], (CurveSample{0, 7}));
}

// Three knots in a line of equal steps: every system row is satisfied by the chord, 8, up to what
// ten sweeps leave, so the middle of each segment is half way.
TEST(CurveSpline, ThroughKnotsInALineStaysOnIt) {
    const auto samples = buildChannelCurve(std::vector{grey(0, 0), grey(8, 8), grey(16, 16)}, 2, 16);
    ASSERT_EQ(samples.size(), 18u);
    for (size_t k = 0; k < samples.size(); ++k) {
        const int along = int(k) - (k > 8 ? 1 : 0);
        EXPECT_LE(std::abs(samples[k].value - along), 1) << k;
        EXPECT_EQ(samples[k].value, samples[k].position) << k;
    }
}

TEST(CurveSpline, OvershootsBetweenKeysAndIsNotLimited) {
    const auto samples =
        buildChannelCurve(std::vector{grey(0, 0), grey(255, 100), grey(255, 200), grey(0, 300)}, 0, 300);
    int32_t most = 0;
    for (const CurveSample& sample : samples) most = std::max(most, sample.value);
    EXPECT_GT(most, 255);
}

TEST(CurveSpline, ContinuesAtTheLastValueWhereTheKeysStopEarlier) {
    const auto samples = buildChannelCurve(std::vector{grey(9, 0), grey(9, 5)}, 0, 8);
    ASSERT_EQ(samples.size(), 6u + 4u);
    EXPECT_EQ(samples.back(), (CurveSample{9, 8}));
}

TEST(CurveSpline, OfOneKnotHasNoSamples) {
    EXPECT_TRUE(buildChannelCurve(std::vector{grey(9, 8)}, 0, 8).empty());
    EXPECT_TRUE(buildChannelCurve({}, 0, 8).empty());
}

TEST(CurveSpline, DrawsASegmentWithoutLengthInOneStep) {
    const auto samples = buildChannelCurve(std::vector{grey(9, 8), grey(9, 8)}, 0, 8);
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples.front(), (CurveSample{9, 8}));
}

TEST(CurveSpline, RefusesMoreSamplesThanMemoryShouldHold) {
    EXPECT_THROW(buildChannelCurve(std::vector{grey(0, 0), grey(9, 2e9f)}, 0, 255), std::bad_alloc);
}

TEST(LinearKeyValue, LiesOnTheLineBetweenItsKeys) {
    const std::vector keys{grey(0, 0), grey(100, 10), grey(40, 16)};
    EXPECT_EQ(linearKeyValue(3, 1, keys, 0), 30);
    EXPECT_EQ(linearKeyValue(13, 2, keys, 1), 70);
    EXPECT_EQ(linearKeyValue(3, 0, keys, 2), 30) << "before the first segment";
    EXPECT_EQ(linearKeyValue(13, 7, keys, 2), 70) << "after the last segment";
}

TEST(LinearKeyValue, IsTheLeastIntegerOnASegmentOfNoWidth) {
    for (float place : {0.0f, 7.0f, -7.0f})
        for (int32_t x : {0, 7, 20})
            EXPECT_EQ(linearKeyValue(x, 1, std::vector{grey(1, place), grey(9, place)}, 0),
                      std::numeric_limits<int32_t>::min());
}

TEST(LinearRamp, TakesAKeysOwnColourWhereItMeetsIt) {
    const std::vector<CurveKey> keys{{1, 2, 3, 0}, {11, 22, 33, 2.5f}, {0, 0, 0, 5}};
    const auto ramp = linearRamp(keys, 5);
    ASSERT_EQ(ramp.size(), 5u);
    EXPECT_EQ(ramp[0], (RampColour{3, 2, 1}));
    EXPECT_EQ(ramp[1], (RampColour{15, 10, 5}));
    EXPECT_EQ(ramp[2], (RampColour{33, 22, 11}));
}

TEST(ColourCurve, IsReadByIndexAndNeverPastItsEnds) {
    const ColourCurve curve({{200, 100, 0, 0}, {0, 100, 200, 255}}, 255);
    EXPECT_EQ(curve.valueAt(0, 0.0f), 0);
    EXPECT_EQ(curve.valueAt(0, 1.0f), 200);
    EXPECT_EQ(curve.valueAt(1, 0.3f), 100);
    EXPECT_EQ(curve.valueAt(2, 1.0f), 0);
    EXPECT_EQ(curve.valueAt(2, 7.0f), 0);
    EXPECT_EQ(curve.valueAt(2, -1.0f), 200);
    EXPECT_EQ(curve.valueAt(2, std::numeric_limits<float>::quiet_NaN()), 200);
}

TEST(ColourCurve, OfNoColoursIsBlack) {
    const ColourCurve curve({}, 255);
    for (size_t channel = 0; channel < 3; ++channel) EXPECT_EQ(curve.valueAt(channel, 0.5f), 0);
}

}  // namespace krl::test
