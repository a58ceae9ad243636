#include <gtest/gtest.h>

#include <limits>

#include "kernels/matte/KeyMatte.h"
#include "krlimage/alpha.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

constexpr int32_t kLeast = std::numeric_limits<int32_t>::min(), kMost = std::numeric_limits<int32_t>::max();

/// An effect on alpha: colour stays, bands do not matter, an image is needed.
void expectAlphaEffect(const std::function<Status(ImageEngine&)>& effect) {
    test::expectSameForAnyBands(effect);
    test::expectStateTests(effect);
    const Picture source = Picture::random(19, 7);
    EXPECT_TRUE(test::sameColour(source.after(effect), source));
}

void expectAlpha(const Picture& picture, uint8_t alpha) {
    for (const Pixel& p : picture.pixels()) EXPECT_EQ(p.alpha, alpha);
}

Picture cropped(const Picture& source, int32_t top, int32_t right, int32_t bottom, int32_t left) {
    return source.after([=](ImageEngine& e) { return alphaCrop(e, top, right, bottom, left); });
}

/// The crop as four tests at each pixel.
Picture croppedLiterally(Picture picture, int64_t top, int64_t right, int64_t bottom, int64_t left) {
    for (int64_t* side : {&top, &right, &bottom, &left}) *side = std::max<int64_t>(*side, 0);
    const int32_t width = picture.width(), height = picture.height();
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            if (x <= left || x >= width - right || y <= bottom || y >= height - top)
                picture.at(x, y).alpha = 0;
    return picture;
}

TEST(AlphaCrop, OfNothingClearsTheFirstColumnAndRow) {
    const Picture result = cropped(Picture(3, 3), 0, 0, 0, 0);
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 3; ++x) EXPECT_EQ(result.at(x, y).alpha, x == 0 || y == 0 ? 0 : 255);
}

TEST(AlphaCrop, CountsBottomFromTheFirstRowAndTopFromTheLast) {
    const Picture result = cropped(Picture(3, 8), 2, 0, 1, 0);
    for (int32_t y = 0; y < 8; ++y) EXPECT_EQ(result.at(2, y).alpha, y <= 1 || y >= 6 ? 0 : 255) << y;
}

TEST(AlphaCrop, FollowsItsFourTestsForAnySides) {
    const Picture source = Picture::random(9, 7);
    for (const int32_t top : {kLeast, 0, 3, kMost})
        for (const int32_t right : {-1, 0, 2, 9, kMost})
            for (const int32_t bottom : {-5, 1, 6, kMost})
                for (const int32_t left : {kLeast, 0, 4, 7, 8, 9, kMost})
                    ASSERT_EQ(cropped(source, top, right, bottom, left),
                              croppedLiterally(source, top, right, bottom, left))
                        << top << ' ' << right << ' ' << bottom << ' ' << left;
}

TEST(AlphaCrop, ClearsAllFromALeftOfTheLastColumnOn) {
    for (const int32_t left : {8, 9, kMost}) expectAlpha(cropped(Picture::random(9, 4), 0, 0, 0, left), 0);
}

TEST(AlphaCrop, ChangesOnlyAlpha) {
    expectAlphaEffect([](ImageEngine& e) { return alphaCrop(e, 1, 2, 0, 1); });
}

Picture offset(const Picture& source, int32_t horizontal, int32_t vertical) {
    return source.after([=](ImageEngine& e) { return alphaOffset(e, horizontal, vertical); });
}

Picture offsetLiterally(const Picture& source, int32_t horizontal, int32_t vertical) {
    Picture result = source;
    for (int32_t y = 0; y < source.height(); ++y)
        for (int32_t x = 0; x < source.width(); ++x) {
            const int64_t nx = int64_t(x) + horizontal, ny = int64_t(y) + vertical;
            if (nx >= 0 && nx < source.width() && ny >= 0 && ny < source.height())
                result.at(int32_t(nx), int32_t(ny)).alpha = source.at(x, y).alpha;
        }
    return result;
}

TEST(AlphaOffset, MovesThePlaneAndKeepsTheEdgeLeftBehind) {
    const Picture source(3, {{1, 1, 1, 10}, {2, 2, 2, 20}, {3, 3, 3, 30}});
    EXPECT_EQ(offset(source, 1, 0), Picture(3, {{1, 1, 1, 10}, {2, 2, 2, 10}, {3, 3, 3, 20}}));
    EXPECT_EQ(offset(source, -2, 0), Picture(3, {{1, 1, 1, 30}, {2, 2, 2, 20}, {3, 3, 3, 30}}));
}

TEST(AlphaOffset, FollowsItsDefinition) {
    const Picture source = Picture::random(9, 7);
    for (const int32_t horizontal : {kLeast, -9, -8, -3, 0, 1, 8, 9, kMost})
        for (const int32_t vertical : {kLeast, -7, -6, -1, 0, 2, 6, 7, kMost})
            ASSERT_EQ(offset(source, horizontal, vertical), offsetLiterally(source, horizontal, vertical))
                << horizontal << ' ' << vertical;
}

TEST(AlphaOffset, OfNothingOrBeyondThePictureChangesNothing) {
    const Picture source = Picture::random(9, 7);
    EXPECT_EQ(offset(source, 0, 0), source);
    EXPECT_EQ(offset(source, 9, 0), source);
    EXPECT_EQ(offset(source, 0, -7), source);
}

TEST(AlphaOffset, ChangesOnlyAlpha) {
    expectAlphaEffect([](ImageEngine& e) { return alphaOffset(e, 1, -2); });
    test::expectStateTests([](ImageEngine& e) { return alphaOffset(e, 0, 0); });
}

TEST(ClearAlpha, FillsWithBlackOrWhite) {
    const auto fill = [](AlphaFill direction) {
        return [=](ImageEngine& e) { return clearAlpha(e, direction); };
    };
    expectAlphaEffect(fill(AlphaFill::White));
    expectAlpha(Picture::random(5, 4).after(fill(AlphaFill::White)), 255);
    expectAlpha(Picture::random(5, 4).after(fill(AlphaFill::Black)), 0);
}

TEST(CombineRGBwithAlpha, TakesRedIntoAlphaAndNothingElse) {
    expectAlphaEffect(combineRGBwithAlpha);
    const Picture source(4, {{0, 0, 255, 77}, {255, 255, 0, 255}, {9, 9, 200, 100}, {9, 9, 100, 100}});
    EXPECT_EQ(source.after(combineRGBwithAlpha),
              Picture(4, {{0, 0, 255, 77}, {255, 255, 0, 0}, {9, 9, 200, 45}, {9, 9, 100, 0}}));
}

TEST(InputMask, FoldsInTheMasksAlpha) {
    const Picture source = Picture::random(13, 5, 1), mask = Picture::random(13, 5, 2);
    for (const bool keep : {false, true})
        for (const bool invert : {false, true}) {
            const auto effect = [&](ImageEngine& e) {
                return inputMask(e, mask.asSecondImage(), keep, invert);
            };
            for (const int32_t bands : {1, 2, 3, 7}) {
                const Picture result = source.after(effect, bands);
                EXPECT_TRUE(test::sameColour(result, source));
                for (size_t i = 0; i < source.pixels().size(); ++i)
                    ASSERT_EQ(result.pixels()[i].alpha,
                              applyKeyMatte(source.pixels()[i].alpha, mask.pixels()[i].alpha, keep, invert));
            }
        }
}

TEST(InputMask, RefusesAMissingMaskAndOneOfAnotherSize) {
    const Picture source = Picture::random(4, 4);
    const auto masked = [&](const SecondImage& mask) {
        Picture copy = source;
        const Status status = copy.apply([&](ImageEngine& e) { return inputMask(e, mask, true, false); });
        EXPECT_EQ(copy, source);
        return status;
    };
    EXPECT_EQ(masked({}), kStatusNoMaskImage);
    EXPECT_EQ(masked(Picture(4, 5).asSecondImage()), kStatusMaskSize);
    EXPECT_EQ(masked(Picture(2, 8).asSecondImage()), kStatusMaskSize);
    test::expectStateTests([](ImageEngine& e) { return inputMask(e, {}, true, false); });
}

TEST(RGBtoAlpha, TakesTheMeanOfTheColour) {
    expectAlphaEffect(rgbToAlpha);
    EXPECT_EQ(Picture(2, {{1, 2, 5, 255}, {255, 255, 254, 0}}).after(rgbToAlpha),
              Picture(2, {{1, 2, 5, 2}, {255, 255, 254, 254}}));
}

TEST(RGBAtoAlpha, LimitsAlphaToTheMeanOfTheColour) {
    expectAlphaEffect(rgbaToAlpha);
    EXPECT_EQ(Picture(2, {{1, 2, 5, 255}, {255, 255, 254, 9}}).after(rgbaToAlpha),
              Picture(2, {{1, 2, 5, 2}, {255, 255, 254, 9}}));
}

TEST(ViewAlpha, ShowsAlphaAsOpaqueGrey) {
    EXPECT_EQ(Picture(1, {{1, 2, 3, 77}}).after(viewAlpha), Picture(1, {{77, 77, 77, 255}}));
    test::expectSameForAnyBands(viewAlpha);
    test::expectStateTests(viewAlpha);
}

TEST(ViewAlpha, IsUndoneByRGBtoAlpha) {
    const Picture source = Picture::random(31, 9);
    EXPECT_TRUE(test::sameAlpha(source.after(viewAlpha).after(rgbToAlpha), source));
}

}  // namespace
}  // namespace krl
