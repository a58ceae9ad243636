#include <gtest/gtest.h>

#include "krlimage/generate.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

constexpr Pixel kBefore{7, 7, 7, 99};

Picture gradient(int32_t width, int32_t height, GradientType type, std::vector<CurveKey> keys) {
    Picture picture(width, height, kBefore);
    const auto paint = [&](ImageEngine& engine) {
        return rgbGradient(engine, picture.pixels().data(), width, height, std::move(keys), type);
    };
    EXPECT_EQ(picture.apply(paint), kStatusOk);
    return picture;
}

CurveKey grey(int32_t level, float position) { return {level, level, level, position}; }

std::vector<int> levels(const Picture& picture) {
    std::vector<int> row;
    for (int32_t x = 0; x < picture.width(); ++x) row.push_back(picture.at(x, 0).green);
    return row;
}

}  // namespace

TEST(Gradient, OfOneColourIsFlatWhateverItsType) {
    for (GradientType type : {GradientType::linear, GradientType::curved})
        EXPECT_EQ(gradient(5, 3, type, {{10, 20, 30, 2}}), Picture(5, 3, {30, 20, 10, 99}));
}

TEST(Gradient, OfNoColoursIsBlack) {
    for (GradientType type : {GradientType::linear, GradientType::curved})
        EXPECT_EQ(gradient(5, 3, type, {}), Picture(5, 3, {0, 0, 0, 99}));
}

TEST(Gradient, InStraightLinesNeverReachesAKeyAtTheWidth) {
    EXPECT_EQ(levels(gradient(5, 2, GradientType::linear, {grey(0, 0), grey(100, 5)})),
              (std::vector{0, 20, 40, 60, 80}));
}

TEST(Gradient, IsFlatOutsideItsKeys) {
    EXPECT_EQ(levels(gradient(10, 1, GradientType::linear, {grey(80, 6), grey(40, 2)})),
              (std::vector{40, 40, 40, 50, 60, 70, 80, 80, 80, 80}));
}

TEST(Gradient, IsTheSameInEveryRowAndKeepsAlpha) {
    for (GradientType type : {GradientType::linear, GradientType::curved}) {
        const Picture picture = gradient(300, 4, type, {{255, 0, 9, 30}, {3, 200, 90, 200}, {0, 0, 0, 260}});
        for (int32_t y = 0; y < 4; ++y)
            for (int32_t x = 0; x < 300; ++x) {
                ASSERT_EQ(picture.at(x, y), picture.at(x, 0));
                ASSERT_EQ(picture.at(x, y).alpha, kBefore.alpha);
            }
    }
}

TEST(Gradient, OnACurveEndsAtColumn255AndHoldsItsLastColour) {
    const Picture picture = gradient(400, 1, GradientType::curved, {{0, 0, 0, 0}, {255, 128, 1, 400}});
    EXPECT_EQ(picture.at(0, 0), (Pixel{0, 0, 0, 99}));
    EXPECT_NE(picture.at(254, 0).red, 255);
    for (int32_t x = 255; x < 400; ++x) ASSERT_EQ(picture.at(x, 0), (Pixel{1, 128, 255, 99}));
}

TEST(Gradient, OnACurveShowsItsFirstPartOnly) {
    const Picture picture = gradient(128, 1, GradientType::curved, {grey(0, 0), grey(255, 128)});
    EXPECT_NEAR(picture.at(127, 0).red, 127, 1);
}

// A key left of column 0 is never met, so the walk stays on the first segment and leaves the byte.
TEST(Gradient, InStraightLinesStoresTheLowByte) {
    EXPECT_EQ(levels(gradient(4, 1, GradientType::linear, {grey(0, -2), grey(200, 0)})),
              (std::vector{200, 200 + 100 - 256, 200 + 200 - 256, 200 + 300 - 256}));
}

TEST(Gradient, OfNoSizeIsLeftAlone) {
    Pixel pixel = kBefore;
    const ImageEngine engine;
    EXPECT_EQ(rgbGradient(engine, &pixel, 0, 5, {grey(1, 0)}, GradientType::linear), kStatusOk);
    EXPECT_EQ(rgbGradient(engine, &pixel, -3, 5, {}, GradientType::curved), kStatusOk);
    EXPECT_EQ(pixel, kBefore);
}

}  // namespace krl::test
