#include <gtest/gtest.h>

#include <climits>
#include <limits>

#include "krlimage/stylise.h"
#include "reference/StyliseReference.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

constexpr ChannelTarget kTargets[] = {ChannelTarget::RGBA, ChannelTarget::RGB, ChannelTarget::Alpha};
constexpr int32_t kShapes[][2] = {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {17, 11}, {40, 31}, {600, 4}};

auto blocks(int32_t amount, ChannelTarget target) {
    return [=](ImageEngine& engine) { return mosaic(engine, amount, target); };
}
auto paint(int32_t brushSize, int32_t intensity) {
    return [=](ImageEngine& engine) { return oilPaint(engine, brushSize, intensity); };
}
auto scatter(int32_t distance, ChannelTarget target) {
    return [=](ImageEngine& engine) { return fragment(engine, distance, target); };
}
auto tiles(int32_t tileW, int32_t tileH, int32_t random, int32_t seed, ChannelTarget target) {
    return [=](ImageEngine& engine) { return tile(engine, tileW, tileH, random, seed, target); };
}
/// A cover that is not black.
constexpr Colour kCover{10, 20, 30};

auto shade(const VignetteSettings& settings) {
    return [=](ImageEngine& engine) { return vignette(engine, settings); };
}

template <class Check>
void onManyPictures(Check&& check) {
    for (const auto& [width, height] : kShapes)
        for (ChannelTarget target : kTargets)
            check(Picture::random(width, height, 3 * width + height), target);
}

TEST(Mosaic, DividesByOneSampleMoreThanABlockHolds) {
    EXPECT_EQ(Picture(4, 4, {200, 200, 200, 200}).after(blocks(2, ChannelTarget::RGBA)),
              Picture(4, 4, {160, 160, 160, 160}));
    // A block cut by the edge holds fewer: 200 / 2, and 400 / 3.
    EXPECT_EQ(Picture::grey({{200, 200, 200}}).after(blocks(2, ChannelTarget::RGB)),
              Picture::grey({{133, 133, 100}}));
}

TEST(Mosaic, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (int32_t amount : {-3, 2, 3, 7, 16, 300})
            EXPECT_EQ(picture.after(blocks(amount, target)), referenceMosaic(picture, amount, target));
    });
}

TEST(Mosaic, OfTheLargestBlocksIsOneBlock) {
    const Picture picture = Picture::random(30, 20);
    EXPECT_EQ(picture.after(blocks(INT_MAX, ChannelTarget::RGBA)),
              referenceMosaic(picture, 30, ChannelTarget::RGBA));
}

TEST(OilPaint, OfOneBinIsTheMeanOfTheWindow) {
    const Picture picture = Picture::grey({{90, 91, 92}, {90, 91, 92}});
    EXPECT_EQ(picture.after(paint(1, 10)), Picture::grey({{90, 91, 91}, {90, 91, 91}}));
}

TEST(OilPaint, LowestBinWinsATie) {
    const Picture picture = Picture::grey({{10, 240}});
    EXPECT_EQ(picture.after(paint(1, 10)), Picture::grey({{10, 10}}));
}

TEST(OilPaint, EqualsItsDefinition) {
    for (const auto& [width, height] : kShapes)
        for (int32_t brushSize : {INT_MIN, 2, 5, 99})
            for (int32_t intensity : {-1, 15, 60, 254, 255, INT_MAX}) {
                const Picture picture = Picture::random(width, height, intensity);
                EXPECT_EQ(picture.after(paint(brushSize, intensity)),
                          referenceOilPaint(picture, brushSize, intensity));
            }
}

TEST(OilPaint, BinsOfGreysEqualTheirDefinition) {
    // The brightness of many greys is the border of a bin, where the rounding of its parts decides.
    const Picture ramp = Picture::ramp(2);
    for (int32_t intensity = 10; intensity <= 255; ++intensity)
        EXPECT_EQ(ramp.after(paint(1, intensity)), referenceOilPaint(ramp, 1, intensity)) << intensity;
}

TEST(OilPaint, StripsOfAWidePictureMeet) {
    const Picture picture = Picture::random(300, 20, 3);
    for (int32_t brushSize : {1, 2, 3, 4, 5})
        EXPECT_EQ(picture.after(paint(brushSize, 12)), referenceOilPaint(picture, brushSize, 12))
            << brushSize;
    for (int32_t bands : {2, 5, 20})
        EXPECT_EQ(picture.after(paint(3, 12), bands), picture.after(paint(3, 12))) << bands;
}

TEST(OilPaint, FullCountersOfAFlatPictureHold) {
    const Picture white(25, 25, {255, 255, 255, 255});
    EXPECT_EQ(white.after(paint(5, 255)), white);
}

TEST(Fragment, DistanceZeroKeepsPlainColours) {
    const Picture picture = Picture::random(9, 7);
    EXPECT_EQ(picture.after(scatter(0, ChannelTarget::RGB)), picture);
}

TEST(Fragment, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (int32_t distance : {0, 1, 4, -5, 15, 700})
            EXPECT_EQ(picture.after(scatter(distance, target)), referenceFragment(picture, distance, target));
    });
}

TEST(Fragment, TakesAnyDistanceWithoutHarm) {
    const Picture picture = Picture::random(9, 7);
    const Picture far = picture.after(scatter(100, ChannelTarget::RGB));
    EXPECT_EQ(picture.after(scatter(INT_MAX, ChannelTarget::RGB)), far);
    EXPECT_EQ(picture.after(scatter(INT_MIN, ChannelTarget::RGB)), far);
}

TEST(Tile, WithoutRandomKeepsThePicture) {
    const Picture picture = Picture::random(30, 20);
    for (int32_t bands : {1, 2, 3})
        EXPECT_EQ(picture.after(tiles(7, 5, 1, 9, ChannelTarget::RGBA), bands), picture);
    EXPECT_EQ(picture.after(tiles(7, 5, -8, 9, ChannelTarget::RGBA)), picture);
}

TEST(Tile, EqualsItsDefinitionForAnyBands) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (int32_t bands : {1, 2, 3, 7})
            for (const auto& [width, height, random] :
                 {std::tuple{1, 1, 3}, {4, 3, 5}, {5, 8, 40}, {64, 2, 9}, {1000, 1000, 12}, {3, 3, 100000}})
                EXPECT_EQ(picture.after(tiles(width, height, random, 77, target), bands),
                          referenceTile(picture, width, height, random, 77, target, bands))
                    << width << 'x' << height << ' ' << bands;
    });
}

TEST(Tile, LeavesTheFirstRowAndColumn) {
    const Picture picture = Picture::random(20, 15),
                  result = picture.after(tiles(4, 4, 9, 5, ChannelTarget::RGBA));
    for (int32_t x = 0; x < 20; ++x) EXPECT_EQ(result.at(x, 0), picture.at(x, 0));
    for (int32_t y = 0; y < 15; ++y) EXPECT_EQ(result.at(0, y), picture.at(0, y));
}

TEST(Tile, SeedDecides) {
    const Picture picture = Picture::random(20, 15);
    const auto of = [&](int32_t seed) { return picture.after(tiles(4, 4, 9, seed, ChannelTarget::RGB)); };
    EXPECT_EQ(of(5), of(5));
    EXPECT_FALSE(of(5) == of(6));
}

TEST(Tile, TakesAnyArgumentsWithoutHarm) {
    const Picture picture = Picture::random(20, 15);
    EXPECT_EQ(picture.after(tiles(INT_MAX, INT_MAX, INT_MAX, INT_MIN, ChannelTarget::RGBA)).at(0, 0),
              picture.at(0, 0));
    EXPECT_EQ(picture.after(tiles(INT_MIN, INT_MIN, INT_MIN, INT_MAX, ChannelTarget::RGBA), 4), picture);
}

TEST(Vignette, WithoutTransparencyKeepsColours) {
    const Picture picture = Picture::random(20, 15);
    for (VignetteShape shape : {VignetteShape::Ellipse, VignetteShape::Rectangle})
        EXPECT_EQ(picture.after(shade({.shape = shape, .transparency = 0, .blur = 3})), picture);
}

TEST(Vignette, RectangleIsHalfOpen) {
    // Half sizes of 1 around the middle at 2, 2.
    const Picture result = Picture(5, 5, {0, 0, 0, 200})
                               .after(shade({.shape = VignetteShape::Rectangle,
                                             .scaleX = 0.5f,
                                             .scaleY = 0.5f,
                                             .target = VignetteTarget::Alpha}));
    for (int32_t y = 0; y < 5; ++y)
        for (int32_t x = 0; x < 5; ++x)
            EXPECT_EQ(result.at(x, y).alpha, (x == 1 || x == 2) && (y == 1 || y == 2) ? 200 : 0)
                << x << ' ' << y;
}

TEST(Vignette, EllipseWithoutARadiusLeavesItsAxisClear) {
    // On the axis the distance is 0 / 0, which is not outside.
    const Pixel clear{1, 2, 3, 4}, covered{30, 20, 10, 4};
    const auto expectClear = [&](const VignetteSettings& arguments, auto&& isOnAxis) {
        const Picture result = Picture(6, 5, clear).after(shade(arguments));
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 6; ++x)
                EXPECT_EQ(result.at(x, y), isOnAxis(x, y) != arguments.isInverted ? clear : covered)
                    << x << ' ' << y;
    };
    for (bool isInverted : {false, true}) {
        expectClear({.colour = kCover, .scaleX = 0, .isInverted = isInverted},
                    [](int32_t x, int32_t) { return x == 3; });
        expectClear({.colour = kCover, .scaleY = 0, .isInverted = isInverted},
                    [](int32_t, int32_t y) { return y == 2; });
        expectClear({.colour = kCover, .scaleX = 0, .scaleY = 0, .isInverted = isInverted},
                    [](int32_t x, int32_t y) { return x == 3 || y == 2; });
    }
    EXPECT_EQ(Picture(1, 1, clear).after(shade({})), Picture(1, 1, clear));
}

TEST(Vignette, RectangleWithoutASizeCoversEverything) {
    EXPECT_EQ(Picture(6, 5, {1, 2, 3, 4})
                  .after(shade({.shape = VignetteShape::Rectangle, .colour = kCover, .scaleX = 0})),
              Picture(6, 5, {30, 20, 10, 4}));
}

TEST(Vignette, EqualsItsDefinition) {
    for (const auto& [width, height] : kShapes) {
        const Picture picture = Picture::random(width, height, width);
        for (VignetteShape shape : {VignetteShape::Ellipse, VignetteShape::Rectangle})
            for (VignetteTarget target : {VignetteTarget::RGB, VignetteTarget::Alpha})
                for (int32_t blur : {-5, 0, 1, 8})
                    for (const VignetteSettings& a :
                         {VignetteSettings{},
                          {.transparency = 180, .scaleX = 0.7f, .scaleY = 1.3f, .offsetX = 12, .offsetY = -7},
                          {.transparency = 999,
                          .scaleX = 9,
                          .scaleY = 0.01f,
                          .offsetX = -400,
                          .isInverted = true},
                          {.transparency = 210, .scaleX = 0, .scaleY = 0.8f},
                          {.transparency = 210, .scaleX = 0.8f, .scaleY = 0, .offsetY = 9},
                          {.transparency = 77,
                          .scaleX = 0.51f,
                          .scaleY = 0.33f,
                          .offsetX = 100,
                          .offsetY = -100,
                          .isInverted = true}}) {
                        VignetteSettings arguments = a;
                        arguments.shape = shape;
                        arguments.colour = kCover;
                        arguments.target = target;
                        arguments.blur = blur;
                        EXPECT_EQ(picture.after(shade(arguments)), referenceVignette(picture, arguments));
                    }
    }
}

TEST(Vignette, TakesAnyArgumentsWithoutHarm) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity(),
                    kNaN = std::numeric_limits<float>::quiet_NaN();
    const Picture picture = Picture::random(20, 15);
    for (VignetteShape shape : {VignetteShape::Ellipse, VignetteShape::Rectangle})
        for (float scale : {kNaN, kInfinity, -kInfinity})
            for (int32_t offset : {INT_MIN, INT_MAX}) {
                const VignetteSettings arguments{
                    .shape = shape, .scaleX = scale, .scaleY = scale, .offsetX = offset, .offsetY = offset};
                EXPECT_EQ(picture.after(shade(arguments)), referenceVignette(picture, arguments));
            }
    EXPECT_THROW(static_cast<void>(Picture(picture).apply(shade({.blur = INT_MAX}))), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(Picture(picture).apply(shade({.blur = 20000}))), std::bad_alloc);
}

TEST(Stylise, DoesNotDependOnBandsButForTiles) {
    for (ChannelTarget target : kTargets) {
        expectSameForAnyBands(blocks(3, target));
        expectSameForAnyBands(scatter(2, target));
    }
    expectSameForAnyBands(paint(3, 40));
    expectSameForAnyBands(shade({.blur = 2}));
    expectSameForAnyBands(shade({.shape = VignetteShape::Rectangle, .target = VignetteTarget::Alpha}));
}

TEST(Stylise, LeavesOtherChannelsAlone) {
    const Picture picture = Picture::random(21, 13);
    EXPECT_TRUE(sameAlpha(picture.after(paint(3, 40)), picture));
    EXPECT_TRUE(sameAlpha(picture.after(shade({.blur = 2})), picture));
    EXPECT_TRUE(sameColour(picture.after(shade({.blur = 2, .target = VignetteTarget::Alpha})), picture));
}

TEST(Stylise, NeedsAnImage) {
    expectStateTests(blocks(3, ChannelTarget::RGB));
    expectStateTests(paint(3, 40));
    expectStateTests(scatter(2, ChannelTarget::RGB));
    expectStateTests(tiles(2, 2, 2, 2, ChannelTarget::RGB));
    expectStateTests(shade({}));
}

}  // namespace
}  // namespace krl::test
