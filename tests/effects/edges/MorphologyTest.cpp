#include <gtest/gtest.h>

#include <climits>

#include "krlimage/edges.h"
#include "reference/MorphologyReference.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

constexpr int32_t kShapes[][2] = {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {17, 5}, {33, 19}, {40, 37}};
constexpr int32_t kSizes[] = {0, 1, 2, 3, 5, 8, 20, 300};

Picture opaque(Picture picture) {
    for (Pixel& p : picture.pixels()) p.alpha = 255;
    return picture;
}

auto dilate(int32_t size) {
    return [=](ImageEngine& engine) { return dilation(engine, size); };
}
auto erode(int32_t size) {
    return [=](ImageEngine& engine) { return erosion(engine, size); };
}
TEST(Dilation, OfSizeZeroKeepsAnOpaquePicture) {
    const Picture picture = opaque(Picture::random(9, 7));
    EXPECT_EQ(picture.after(dilate(0)), picture);
    EXPECT_EQ(picture.after(erode(0)), picture);
}

TEST(Dilation, ScalesTwiceByAlphaAtSizeZero) {
    const Picture picture(2, {{200, 100, 50, 128}, {200, 100, 50, 255}});
    // 200 * 128 / 255 is 100, and 100 * 128 / 255 is 50.
    EXPECT_EQ(picture.after(dilate(0)), Picture(2, {{50, 25, 12, 128}, {200, 100, 50, 255}}));
}

/// The same row five times over, so that the pass down the columns changes nothing.
Picture rows(std::initializer_list<int> levels) {
    return Picture::grey({levels, levels, levels, levels, levels});
}

TEST(Dilation, SpreadsDarkAndErosionSpreadsBright) {
    EXPECT_EQ(rows({9, 9, 9, 1, 9, 9, 9}).after(dilate(1)), rows({9, 9, 1, 1, 1, 9, 9}));
    EXPECT_EQ(rows({1, 1, 1, 9, 1, 1, 1}).after(erode(1)), rows({1, 1, 9, 9, 9, 1, 1}));
}

TEST(Dilation, NeverSeesTheSampleThatSeedingLeavesOut) {
    EXPECT_EQ(rows({0, 9, 9, 9}).after(dilate(1)), rows({9, 9, 9, 9}));
    EXPECT_EQ(rows({9, 0, 9, 9, 9, 9}).after(dilate(2)), rows({9, 9, 9, 9, 9, 9}));
}

TEST(Dilation, SeesFurtherBackNearTheStart) {
    // With size 2 sample 0 stays in the window up to column 3.
    EXPECT_EQ(rows({0, 9, 9, 9, 9, 9}).after(dilate(2)), rows({0, 0, 0, 0, 9, 9}));
}

TEST(Dilation, OfASingleLineAtSizeOneFindsNothingAndIsWhite) {
    EXPECT_EQ(Picture::grey({{1, 2, 3}}).after(dilate(1)), Picture::grey({{255, 255, 255}}));
    EXPECT_EQ(Picture::grey({{1, 2, 3}}).after(erode(1)), Picture::grey({{0, 0, 0}}));
}

TEST(Erosion, SamplesPastTheEndNeverWin) {
    EXPECT_EQ(rows({3, 3, 3, 3}).after(erode(2)), rows({3, 3, 3, 3}));
}

TEST(Morphology, EqualsTheScannedRing) {
    for (const auto& [width, height] : kShapes)
        for (int32_t size : kSizes)
            for (const Picture& picture : {Picture::random(width, height, size + 1),
                                           opaque(Picture::random(width, height, size + 2))}) {
                EXPECT_EQ(picture.after(dilate(size)), referenceMorphology(picture, size, ringMinimum()));
                EXPECT_EQ(picture.after(erode(size)), referenceMorphology(picture, size, ringMaximum()));
            }
}

TEST(Morphology, WindowsReachOverManyBands) {
    const Picture picture = Picture::random(21, 38);
    for (int32_t size : {0, 1, 2, 7, 20, 33, 256, 257}) {
        const Picture expected = referenceMorphology(picture, size, ringMinimum());
        for (int32_t bands : {2, 3, 7, 20, 50})
            EXPECT_EQ(picture.after(dilate(size), bands), expected) << bands;
    }
}

TEST(Morphology, TakesAnySizeWithoutHarm) {
    const Picture picture = Picture::random(13, 11);
    EXPECT_EQ(picture.after(dilate(INT_MAX)), picture.after(dilate(100)));
    EXPECT_EQ(picture.after(erode(INT_MAX)), picture.after(erode(100)));
    EXPECT_EQ(picture.after(dilate(INT_MIN)), picture.after(dilate(0)));
}

TEST(Morphology, LeavesAlphaAlone) {
    const Picture picture = Picture::random(20, 14);
    EXPECT_TRUE(sameAlpha(picture.after(dilate(3)), picture));
    EXPECT_TRUE(sameAlpha(picture.after(erode(3)), picture));
}

TEST(Morphology, DoesNotDependOnBands) {
    expectSameForAnyBands(dilate(2));
    expectSameForAnyBands(erode(3));
}

TEST(Morphology, NeedsAnImage) {
    expectStateTests(dilate(1));
    expectStateTests(erode(1));
}

}  // namespace
}  // namespace krl::test
