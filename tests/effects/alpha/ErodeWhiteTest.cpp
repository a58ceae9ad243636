#include <gtest/gtest.h>

#include <climits>

#include "krlimage/alpha.h"
#include "reference/MorphologyReference.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

/// A line of alpha with the window ending at each sample.
Line throughRingAtRight(const Line& samples, int distance) {
    const RingExtreme extreme = ringMinimum();
    Line ring(size_t(distance * 2 + 1), extreme.filler), result;
    for (size_t x = 0; x < samples.size(); ++x) {
        ring[x % ring.size()] = samples[x];
        result.push_back(extreme.of(ring));
    }
    return result;
}

/// A line of alpha with the window beginning at each sample; sample 0 is never read.
Line throughRingAtLeft(const Line& samples, int distance) {
    const RingExtreme extreme = ringMinimum();
    Line ring(size_t(distance * 2 + 1), extreme.filler), result(samples.size());
    for (size_t n = 0; n < samples.size(); ++n) {
        const size_t x = samples.size() - 1 - n;
        ring[n % ring.size()] = x == 0 ? 255 : samples[x];
        result[x] = extreme.of(ring);
    }
    return result;
}

Picture referenceErodeWhite(Picture picture, int distance, ErodeDirection direction) {
    if (direction == ErodeDirection::All) {
        const auto work = [&](const Line& line) { return throughRing(line, distance, ringMinimum()); };
        replaceLines(picture, 3, true, false, work);
        replaceLines(picture, 3, false, false, work);
    } else {
        replaceLines(picture, 3, true, false, [&](const Line& line) {
            return direction == ErodeDirection::Right ? throughRingAtRight(line, distance)
                                                      : throughRingAtLeft(line, distance);
        });
    }
    return picture;
}

auto shrink(int32_t distance, ErodeDirection direction) {
    return [=](ImageEngine& engine) { return erodeWhite(engine, distance, direction); };
}

TEST(ErodeWhite, EqualsTheScannedRing) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {2, 3}, {17, 5}, {33, 19}, {40, 37}})
        for (int32_t distance : {0, 1, 2, 3, 5, 8, 20, 300})
            for (ErodeDirection direction :
                 {ErodeDirection::All, ErodeDirection::Right, ErodeDirection::Left}) {
                const Picture picture = Picture::random(width, height, distance + 5);
                EXPECT_EQ(picture.after(shrink(distance, direction)),
                          referenceErodeWhite(picture, distance, direction));
            }
}

TEST(ErodeWhite, WindowLiesOnTheSideAsked) {
    const auto alphas = [](std::initializer_list<int> levels) {
        Picture picture(int32_t(levels.size()), 1);
        int32_t x = 0;
        for (int level : levels) picture.at(x++, 0) = {1, 2, 3, uint8_t(level)};
        return picture;
    };
    EXPECT_EQ(alphas({9, 0, 9, 9, 9}).after(shrink(1, ErodeDirection::Right)), alphas({9, 0, 0, 0, 9}));
    EXPECT_EQ(alphas({9, 9, 9, 0, 9}).after(shrink(1, ErodeDirection::Left)), alphas({9, 0, 0, 0, 9}));
}

TEST(ErodeWhite, LeftNeverReadsColumnZero) {
    const Picture picture(3, {{1, 1, 1, 0}, {1, 1, 1, 7}, {1, 1, 1, 9}});
    EXPECT_EQ(picture.after(shrink(1, ErodeDirection::Left)).at(0, 0).alpha, 7);
    EXPECT_EQ(picture.after(shrink(0, ErodeDirection::Left)).at(0, 0).alpha, 255);
}

TEST(ErodeWhite, LeavesColourAlone) {
    const Picture picture = Picture::random(20, 14);
    EXPECT_TRUE(sameColour(picture.after(shrink(3, ErodeDirection::All)), picture));
}

TEST(ErodeWhite, TakesAnyDistanceWithoutHarm) {
    const Picture picture = Picture::random(13, 11);
    EXPECT_EQ(picture.after(shrink(INT_MAX, ErodeDirection::Right)),
              picture.after(shrink(13, ErodeDirection::Right)));
    EXPECT_EQ(picture.after(shrink(-1, ErodeDirection::Right)), picture);
}

TEST(ErodeWhite, DoesNotDependOnBands) {
    for (ErodeDirection direction : {ErodeDirection::All, ErodeDirection::Right, ErodeDirection::Left})
        expectSameForAnyBands(shrink(2, direction));
}

TEST(ErodeWhite, NeedsAnImage) { expectStateTests(shrink(1, ErodeDirection::Left)); }

}  // namespace
}  // namespace krl::test
