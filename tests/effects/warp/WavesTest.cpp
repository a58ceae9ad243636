#include <gtest/gtest.h>

#include <limits>

#include "krlimage/warp.h"
#include "reference/WarpReference.h"

namespace krl::test {
namespace {

constexpr auto kStandard = SampleQuality::Standard;
constexpr auto kBilinear = SampleQuality::Bilinear;
constexpr ChannelTarget kTargets[] = {ChannelTarget::RGBA, ChannelTarget::RGB, ChannelTarget::Alpha};
constexpr float kHalfTurn = 3.14159265f;

auto waving(WaveNumbers n, WaveEdge edge, SampleQuality quality, ChannelTarget target = ChannelTarget::RGBA) {
    return [=](ImageEngine& e) {
        return waves(e, {n.amplitude, n.frequency, n.horizPhase, n.vertPhase, n.hPercent, n.vPercent, edge},
                     quality, target);
    };
}

auto blocks(WaveNumbers n, SampleQuality quality, ChannelTarget target = ChannelTarget::RGBA) {
    return [=](ImageEngine& e) {
        return blockWaves(e, n.amplitude, n.frequency, n.horizPhase, n.vertPhase, quality, target);
    };
}

auto circles(float amplitude, float frequency, float phase, Point origin, SampleQuality quality,
             ChannelTarget target = ChannelTarget::RGBA) {
    return [=](ImageEngine& e) {
        return circularWaves(e, amplitude, frequency, phase, origin, quality, target);
    };
}

auto twirling(int32_t amount, SampleQuality quality, ChannelTarget target = ChannelTarget::RGBA) {
    return [=](ImageEngine& e) { return twirl(e, amount, quality, target); };
}

TEST(Waves, ShiftEveryRowByTheSameWhereTheFrequencyIsZero) {
    // A sine of pi / 2 is 1: every row reads `amplitude` to the right.
    const Picture row = Picture::grey({{0, 10, 20, 30, 40, 50}});
    const WaveNumbers right{2, 0, kHalfTurn / 2, 0, 100, 0}, left{-2, 0, kHalfTurn / 2, 0, 100, 0};
    EXPECT_EQ(row.after(waving(right, WaveEdge::Repeat, kStandard)),
              Picture::grey({{20, 30, 40, 50, 50, 50}}));
    EXPECT_EQ(row.after(waving(left, WaveEdge::Repeat, kStandard)), Picture::grey({{0, 0, 0, 10, 20, 30}}));
    EXPECT_EQ(row.after(waving(right, WaveEdge::Repeat, kBilinear)),
              Picture::grey({{20, 30, 40, 50, 50, 50}}));
}

TEST(Waves, StandardWrapIsOneShortOnEachSide) {
    const Picture row = Picture::grey({{0, 10, 20, 30, 40, 50}});
    const WaveNumbers right{2, 0, kHalfTurn / 2, 0, 100, 0}, left{-2, 0, kHalfTurn / 2, 0, 100, 0};
    // -2 and -1 come from 3 and 4; 6 and 7 from 1 and 2.
    EXPECT_EQ(row.after(waving(left, WaveEdge::Wrap, kStandard)), Picture::grey({{30, 40, 0, 10, 20, 30}}));
    EXPECT_EQ(row.after(waving(right, WaveEdge::Wrap, kStandard)), Picture::grey({{20, 30, 40, 50, 10, 20}}));
}

TEST(Waves, StandardWrapRunsOnIntoTheRowsBesideWhereTheShiftIsLongerThanARow) {
    const Picture rows = Picture::grey({{0, 10, 20}, {30, 40, 50}, {60, 70, 80}});
    const WaveNumbers right{5, 0, kHalfTurn / 2, 0, 100, 0}, left{-5, 0, kHalfTurn / 2, 0, 100, 0};
    // 5, 6 and 7 come from 3, 4 and 5, of which none is left after the last row; -5, -4 and -3 from -3, -2
    // and -1.
    EXPECT_EQ(rows.after(waving(right, WaveEdge::Wrap, kStandard)),
              Picture::grey({{30, 40, 50}, {60, 70, 80}, {80, 80, 80}}));
    EXPECT_EQ(rows.after(waving(left, WaveEdge::Wrap, kStandard)),
              Picture::grey({{0, 0, 0}, {0, 10, 20}, {30, 40, 50}}));
}

TEST(Waves, BilinearWrapHasTheWidthForAPeriodAndOneLessThanTheHeight) {
    const Picture row = Picture::grey({{0, 10, 20, 30, 40, 50}});
    const WaveNumbers across{-2, 0, kHalfTurn / 2, 0, 100, 0}, down{-2, 0, 0, kHalfTurn / 2, 0, 100};
    // -2 becomes 4 and the place runs on from there; at 6 nothing is written, and above it wraps again.
    EXPECT_EQ(row.after(waving(across, WaveEdge::Wrap, kBilinear)),
              Picture::grey({{40, 50, 20, 10, 20, 30}}));
    const Picture column = Picture::grey({{0}, {10}, {20}, {30}, {40}, {50}});
    EXPECT_EQ(column.after(waving(down, WaveEdge::Wrap, kBilinear)),
              Picture::grey({{30}, {40}, {50}, {30}, {20}, {30}}));
}

TEST(Waves, OfNoPercentLeaveThePictureAlone) {
    const Picture picture = Picture::random(13, 11);
    for (SampleQuality quality : {kStandard, kBilinear})
        for (WaveEdge edge : {WaveEdge::Wrap, WaveEdge::Repeat})
            EXPECT_EQ(picture.after(waving({50, 3, 1, 2, 0, 0}, edge, quality)), picture);
}

TEST(Waves, FollowTheSlowRoad) {
    const WaveNumbers cases[] = {{5.5f, 9, 0.3f, 1.1f, 100, 70}, {-20, 3, 2, 0, 40, -130},
                                 {200, 40, 0, 0, 100, 100},      {3e9f, 11, 0, 0.5f, 100, 100},
                                 {1, 1e6f, 0, 0, 100, 100},      {-7.123f, 30, 0.1f, 0.2f, 100, 100}};
    for (auto [width, height] :
         {std::pair{61, 47}, {1030, 5}, {5, 600}}) {  // powers of two and runs are passed
        const Picture picture = Picture::random(width, height, 5);
        for (const WaveNumbers& n : cases)
            for (WaveEdge edge : {WaveEdge::Wrap, WaveEdge::Repeat})
                for (SampleQuality quality : {kStandard, kBilinear})
                    for (ChannelTarget target : kTargets)
                        EXPECT_EQ(picture.after(waving(n, edge, quality, target)),
                                  slowWaves(picture, n, edge, quality, target))
                            << n.amplitude << ' ' << int(edge) << ' ' << int(quality) << ' ' << int(target);
    }
}

TEST(BlockWaves, FollowTheSlowRoad) {
    const Picture picture = Picture::random(361, 47, 6);
    for (const WaveNumbers& n :
         {WaveNumbers{5.5f, 9, 0.3f, 1.1f}, {40, 25, 0, 0}, {-3, 9, 1, 1}, {2.25f, 0, 0.5f, 2}})
        for (SampleQuality quality : {kStandard, kBilinear})
            for (ChannelTarget target : kTargets)
                EXPECT_EQ(picture.after(blocks(n, quality, target)),
                          slowBlockWaves(picture, n, quality, target));
}

TEST(BlockWaves, OfNegativeAmplitudeDoNothing) {
    const Picture picture = Picture::random(9, 7);
    EXPECT_EQ(picture.after(blocks({-4, 30, 1, 1}, kBilinear)), picture);
}

TEST(BlockWaves, TakeAColumnFromOneColumn) {
    // Columns move along x by a place of their own, whatever their row.
    Picture picture(16, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 16; ++x)
            picture.at(x, y) = {uint8_t(10 * x), uint8_t(10 * x), uint8_t(10 * x), 255};
    const Picture result = picture.after(blocks({3, 20, 0, 0}, kStandard));
    for (int y = 1; y < 4; ++y)
        for (int x = 0; x < 16; ++x) EXPECT_EQ(result.at(x, y), result.at(x, 0));
}

TEST(CircularWaves, FollowTheSlowRoad) {
    const Picture picture = Picture::random(561, 47, 7);
    for (Point origin : {Point{20, 30}, Point{280, 23}, Point{9, 0}, Point{600, 46}, Point{5, 47},
                         Point{-100, 500}, Point{1 << 30, -2147483647}})
        for (SampleQuality quality : {kStandard, kBilinear})
            for (ChannelTarget target : kTargets) {
                EXPECT_EQ(picture.after(circles(6.5f, 12, 0.7f, origin, quality, target)),
                          slowCircularWaves(picture, 6.5f, 12, 0.7f, origin, quality, target));
                EXPECT_EQ(picture.after(circles(50, 1e7f, -9, origin, quality, target)),
                          slowCircularWaves(picture, 50, 1e7f, -9, origin, quality, target));
            }
}

TEST(CircularWaves, AtTheCentreGoByThePhaseAlone) {
    Picture picture = Picture::random(9, 9, 2);
    // Sine 0 and cosine 1 of phase 0: three rows down.
    EXPECT_EQ(picture.after(circles(3, 10, 0, {4, 4}, kStandard)).at(4, 4), picture.at(4, 7));
    EXPECT_EQ(picture.after(circles(-3, 10, 0, {4, 4}, kBilinear)), picture);
}

TEST(CircularWaves, WidePathKeepsThePicturesShape) {
    const Picture picture = Picture::random(33, 21, 9);
    const auto wide = [](ImageEngine& e) {
        e.selectInstructionSet(2);
        const Status status = circularWaves(e, 5, 8, 0, {10, 10}, kStandard, ChannelTarget::RGBA);
        e.selectInstructionSet(3);
        return status;
    };
    const Picture plain = picture.after(circles(5, 8, 0, {10, 10}, kStandard)), other = picture.after(wide);
    int differing = 0;
    for (size_t i = 0; i < plain.pixels().size(); ++i) differing += !(plain.pixels()[i] == other.pixels()[i]);
    EXPECT_LE(differing, 2);
}

TEST(Twirl, OfNothingLeavesASquareAlone) {
    const Picture picture = Picture::random(64, 64, 3), odd = Picture::random(31, 31, 4);
    for (SampleQuality quality : {kStandard, kBilinear}) {
        EXPECT_EQ(picture.after(twirling(0, quality)), picture);
        EXPECT_EQ(odd.after(twirling(0, quality)), odd);
    }
}

TEST(Twirl, LeavesTheCornersOfASquareAlone) {
    const Picture picture = Picture::random(64, 64, 3), result = picture.after(twirling(40, kBilinear));
    int changed = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool beyond = (32 - x) * (32 - x) + (32 - y) * (32 - y) >= 32 * 32;
            const bool moved = !(result.at(x, y) == picture.at(x, y));
            EXPECT_FALSE(beyond && moved) << x << ' ' << y;
            changed += moved;
        }
    EXPECT_GT(changed, 2000);
}

TEST(Twirl, FollowsTheSlowRoad) {
    for (auto [width, height] : {std::pair{64, 64}, {61, 47}, {40, 90}, {300, 9}}) {
        const Picture picture = Picture::random(width, height, width);
        for (int32_t amount : {10, -35, 200, 2147483647})
            for (SampleQuality quality : {kStandard, kBilinear})
                for (ChannelTarget target : kTargets)
                    EXPECT_EQ(picture.after(twirling(amount, quality, target)),
                              slowTwirl(picture, amount, quality, target))
                        << width << 'x' << height << ' ' << amount << ' ' << int(quality);
    }
}

TEST(Warps, KeepTheBytesThatTheyWereNotAskedFor) {
    const Picture picture = Picture::random(40, 30, 8);
    for (SampleQuality quality : {kStandard, kBilinear}) {
        EXPECT_TRUE(sameAlpha(
            picture, picture.after(waving({9, 7, 0, 0}, WaveEdge::Wrap, quality, ChannelTarget::RGB))));
        EXPECT_TRUE(sameAlpha(picture, picture.after(blocks({9, 7, 0, 0}, quality, ChannelTarget::RGB))));
        EXPECT_TRUE(sameAlpha(picture, picture.after(circles(9, 7, 0, {3, 3}, quality, ChannelTarget::RGB))));
        EXPECT_TRUE(sameAlpha(picture, picture.after(twirling(30, quality, ChannelTarget::RGB))));
        EXPECT_TRUE(sameColour(picture, picture.after(twirling(30, quality, ChannelTarget::Alpha))));
    }
}

TEST(Warps, AreTheSameInAnyNumberOfBands) {
    for (SampleQuality quality : {kStandard, kBilinear}) {
        for (WaveEdge edge : {WaveEdge::Wrap, WaveEdge::Repeat})
            expectSameForAnyBands(waving({7, 30, 0.5f, 1}, edge, quality));
        expectSameForAnyBands(blocks({4, 30, 0.5f, 1}, quality));
        expectSameForAnyBands(circles(4, 30, 0.5f, {2, 3}, quality));
        expectSameForAnyBands(twirling(60, quality));
    }
}

TEST(Warps, TakeExtremesNaNAndInfinity) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(),
                    infinity = std::numeric_limits<float>::infinity();
    for (SampleQuality quality : {kStandard, kBilinear})
        for (float odd : {nan, infinity, -infinity, 3e38f, -3e38f, 1e-40f}) {
            for (WaveEdge edge : {WaveEdge::Wrap, WaveEdge::Repeat}) {
                expectSameForAnyBands(waving({odd, 5, 0, 0}, edge, quality));
                expectSameForAnyBands(waving({5, odd, odd, odd, 2147483647, -2147483647 - 1}, edge, quality));
            }
            expectSameForAnyBands(blocks({odd, 5, odd, 0}, quality));
            expectSameForAnyBands(blocks({5, odd, 0, odd}, quality));
            expectSameForAnyBands(circles(odd, 5, 0, {-2147483647 - 1, 2147483647}, quality));
            expectSameForAnyBands(circles(5, odd, odd, {0, 0}, quality));
        }
    for (int32_t amount : {2147483647, -2147483647 - 1}) expectSameForAnyBands(twirling(amount, kBilinear));
}

TEST(Warps, TestTheEnginesState) {
    expectStateTests(waving({5, 5, 0, 0}, WaveEdge::Wrap, kBilinear));
    expectStateTests(blocks({5, 5, 0, 0}, kBilinear));
    expectStateTests(circles(5, 5, 0, {0, 0}, kBilinear));
    expectStateTests(twirling(5, kBilinear));
}

}  // namespace
}  // namespace krl::test
