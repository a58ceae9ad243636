#include <gtest/gtest.h>

#include <climits>
#include <limits>

#include "kernels/blend/AlphaScale.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/neighbour/Gradient3x3.h"
#include "krlimage/edges.h"
#include "reference/EdgesReference.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

constexpr ChannelTarget kTargets[] = {ChannelTarget::RGB, ChannelTarget::Alpha};
constexpr int32_t kShapes[][2] = {{1, 1}, {1, 9}, {9, 1},  {2, 2},   {2, 9},
                                  {9, 2}, {3, 3}, {17, 5}, {70, 19}, {300, 6}};
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

auto findEdges(ChannelTarget target) {
    return [=](ImageEngine& engine) { return sobel(engine, target); };
}
auto carve(int32_t strength, float azimuth, float elevation, ChannelTarget target) {
    return [=](ImageEngine& engine) { return emboss(engine, strength, azimuth, elevation, target); };
}
auto trace(int32_t blurAmount, int32_t threshold, ChannelTarget target) {
    return [=](ImageEngine& engine) { return cannyEdgeDetect(engine, blurAmount, threshold, target); };
}
auto glow(int32_t size, int32_t smoothness, float brightness) {
    return [=](ImageEngine& engine) { return glowingEdges(engine, size, smoothness, brightness); };
}
/// Pictures with the gentle slopes and flats that random bytes do not have.
Picture soft(int32_t width, int32_t height, int32_t seed) {
    Picture picture = Picture::random(width, height, seed);
    EXPECT_EQ(TentBlur(EngineOf(1)).blurRGBA(picture.pixels().data(), height, width, 4), kStatusOk);
    return picture;
}

template <class Check>
void onManyPictures(Check&& check) {
    for (const auto& [width, height] : kShapes)
        for (const Picture& picture : {Picture::random(width, height, 3), soft(width, height, 4)})
            for (ChannelTarget target : kTargets) check(picture, target);
}

TEST(Sobel, MakesAFlatPictureWhiteToItsBorder) {
    const Picture flat(6, 5, {10, 20, 30, 40});
    EXPECT_EQ(flat.after(findEdges(ChannelTarget::RGB)), Picture(6, 5, {255, 255, 255, 40}));
    EXPECT_EQ(flat.after(findEdges(ChannelTarget::Alpha)), Picture(6, 5, {10, 20, 30, 255}));
}

TEST(Sobel, DrawsAStepAsADarkLine) {
    // The sums are 4 * 40 across the step: 255 - 160.
    const Picture step = Picture::grey({{0, 0, 0, 40, 40, 40}, {0, 0, 0, 40, 40, 40}, {0, 0, 0, 40, 40, 40}});
    EXPECT_EQ(step.after(findEdges(ChannelTarget::RGB)), Picture::grey({{255, 255, 95, 95, 255, 255},
                                                                        {255, 255, 95, 95, 255, 255},
                                                                        {255, 255, 95, 95, 255, 255}}));
}

TEST(Sobel, PicturesWithoutInnerPixelsBecomeWhite) {
    EXPECT_EQ(Picture::random(1, 4).after(findEdges(ChannelTarget::RGB)).at(0, 2).green, 255);
    EXPECT_EQ(Picture::random(2, 2).after(findEdges(ChannelTarget::Alpha)).at(1, 1).alpha, 255);
}

TEST(Sobel, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        EXPECT_EQ(picture.after(findEdges(target)), referenceSobel(picture, target));
    });
}

TEST(Emboss, FlatPlaneTakesTheHeightOfTheLight) {
    // sin 30 * 255.9 is 127.95.
    EXPECT_EQ(Picture(5, 4, {7, 7, 7, 9}).after(carve(10, 45, 30, ChannelTarget::RGB)),
              Picture(5, 4, {127, 127, 127, 9}));
    // A light from below wraps to a byte: -127 is 129.
    EXPECT_EQ(Picture(5, 4, {7, 7, 7, 9}).after(carve(10, 45, -30, ChannelTarget::RGB)),
              Picture(5, 4, {129, 129, 129, 9}));
}

TEST(Emboss, LeavesPicturesOfOneLine) {
    for (const auto& [width, height] : {std::pair{1, 9}, {9, 1}, {1, 1}}) {
        const Picture picture = Picture::random(width, height);
        EXPECT_EQ(picture.after(carve(10, 45, 30, ChannelTarget::RGB)), picture);
    }
}

TEST(Emboss, PicturesOfTwoLinesAreAllRepair) {
    // The first row takes the second, which takes it back; then the columns do the same.
    const auto carved = [](const Picture& picture) {
        return picture.after(carve(10, 45, 30, ChannelTarget::RGB));
    };
    EXPECT_EQ(carved(Picture::grey({{1, 2, 3, 4}, {5, 6, 7, 8}})),
              Picture::grey({{6, 6, 7, 7}, {6, 6, 7, 7}}));
    EXPECT_EQ(carved(Picture::grey({{1, 2}, {3, 4}, {5, 6}})), Picture::grey({{4, 4}, {4, 4}, {4, 4}}));
    EXPECT_EQ(carved(Picture::grey({{1, 2}, {3, 4}})), Picture::grey({{4, 4}, {4, 4}}));
}

TEST(Emboss, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (const auto& [strength, azimuth, elevation] : {std::tuple{1, 0.0f, 0.0f},
                                                           {10, 45.0f, 30.0f},
                                                           {50, 315.0f, 60.0f},
                                                           {99, 400.0f, -20.0f},
                                                           {-3, -5.0f, 90.0f},
                                                           {20, 90.0f, 200.0f}})
            EXPECT_EQ(picture.after(carve(strength, azimuth, elevation, target)),
                      referenceEmboss(picture, strength, azimuth, elevation, target));
    });
}

TEST(Emboss, TakesAnyAnglesWithoutHarm) {
    const Picture picture = Picture::random(20, 9);
    for (float angle : {kNaN, kInfinity, -kInfinity, 1e30f}) {
        EXPECT_TRUE(sameAlpha(picture.after(carve(10, angle, 30, ChannelTarget::RGB)), picture));
        EXPECT_TRUE(sameAlpha(picture.after(carve(10, 30, angle, ChannelTarget::RGB)), picture));
    }
    EXPECT_EQ(picture.after(carve(INT_MAX, 45, 30, ChannelTarget::RGB)),
              picture.after(carve(50, 45, 30, ChannelTarget::RGB)));
    EXPECT_EQ(picture.after(carve(INT_MIN, 45, 30, ChannelTarget::RGB)),
              picture.after(carve(1, 45, 30, ChannelTarget::RGB)));
}

TEST(Emboss, RefusesWithoutPixels) {
    ImageEngine engine;
    EXPECT_EQ(emboss(engine, 10, 45, 30, ChannelTarget::RGB), kStatusRefused);
    engine.load(nullptr, {3, 3, 12, 0, 0, 0});
    EXPECT_EQ(emboss(engine, 10, 45, 30, ChannelTarget::RGB), kStatusRefused);
}

TEST(Canny, LeavesPicturesOfOneLine) {
    for (ChannelTarget target : kTargets)
        for (const Picture& picture : {Picture::random(1, 8), Picture::random(8, 1)})
            EXPECT_EQ(picture.after(trace(3, 20, target)), picture);
}

TEST(Canny, PicturesOfTwoLinesAreAllRepair) {
    for (int32_t blurAmount : {0, 3})
        EXPECT_EQ(
            Picture::grey({{1, 2, 3, 4}, {5, 6, 7, 8}}).after(trace(blurAmount, 20, ChannelTarget::RGB), 2),
            Picture::grey({{6, 6, 7, 7}, {6, 6, 7, 7}}));
}

TEST(Canny, FlatPictureIsWhiteUnlessBlack) {
    // Without a gradient m is 0, below any sample but a black one.
    EXPECT_EQ(Picture::grey({{9, 9, 9}, {9, 9, 9}, {9, 9, 9}}).after(trace(0, 5, ChannelTarget::RGB)),
              Picture::grey({{255, 255, 255}, {255, 255, 255}, {255, 255, 255}}));
}

TEST(Canny, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (int32_t blurAmount : {-1, 0, 1, 5})
            for (int32_t threshold : {INT_MIN, -1, 0, 20, 100, 255, 256, INT_MAX})
                EXPECT_EQ(picture.after(trace(blurAmount, threshold, target)),
                          referenceCanny(picture, blurAmount, threshold, target));
    });
}

TEST(Canny, SectorsOfAllSumsAreThoseOfTheArc) {
    // Sums come from pictures; here the fixed-point sector limits alone are held against the angles.
    for (int tall = 1; tall <= 1020; ++tall) {
        const int low = int((uint32_t(tall) * 27146u) >> 16);
        for (int wide : {low - 1, low, low + 1, low + 2 * tall, low + 2 * tall + 1}) {
            if (wide < 0 || wide > 1020) continue;
            const double angle = cannyDirection(tall, wide);
            EXPECT_EQ(wide <= low, angle < 22.5) << wide << '/' << tall;
            EXPECT_EQ(wide > low + 2 * tall, angle >= 67.5) << wide << '/' << tall;
        }
    }
}

TEST(GlowingEdges, EqualsTheScannedSquare) {
    onManyPictures([](Picture picture, ChannelTarget target) {
        if (target == ChannelTarget::RGB)
            for (Pixel& p : picture.pixels()) p.alpha = 255;
        for (int32_t size : {-4, 0, 1, 4, 99})
            for (int32_t smoothness : {-1, 0, 3})
                EXPECT_EQ(picture.after(glow(size, smoothness, 1.7f)),
                          referenceGlowingEdges(picture, size, smoothness, 1.7f));
    });
}

TEST(GlowingEdges, LimitsBrightnessOfAnyKind) {
    const Picture picture = Picture::grey({{0, 200}, {0, 200}});
    EXPECT_EQ(picture.after(glow(1, 0, 0.5f)), Picture::grey({{100, 100}, {100, 100}}));
    EXPECT_EQ(picture.after(glow(1, 0, kInfinity)), Picture::grey({{255, 255}, {255, 255}}));
    EXPECT_EQ(picture.after(glow(1, 0, -1.0f)), Picture::grey({{0, 0}, {0, 0}}));
    EXPECT_EQ(picture.after(glow(1, 0, kNaN)), Picture::grey({{0, 0}, {0, 0}}));
}

TEST(Edges, DoNotDependOnBands) {
    for (ChannelTarget target : kTargets) {
        expectSameForAnyBands(findEdges(target));
        expectSameForAnyBands(carve(10, 45, 30, target));
        expectSameForAnyBands(trace(2, 40, target));
    }
    expectSameForAnyBands(glow(2, 2, 3.0f));
}

TEST(Edges, LeaveOtherChannelsAlone) {
    const Picture picture = Picture::random(21, 13);
    for (const auto& effect : std::initializer_list<std::function<Status(ImageEngine&)>>{
             findEdges(ChannelTarget::RGB), carve(9, 9, 9, ChannelTarget::RGB),
             trace(1, 9, ChannelTarget::RGB), glow(2, 1, 2.0f)})
        EXPECT_TRUE(sameAlpha(picture.after(effect), picture));
    for (const auto& effect : std::initializer_list<std::function<Status(ImageEngine&)>>{
             findEdges(ChannelTarget::Alpha), carve(9, 9, 9, ChannelTarget::Alpha),
             trace(1, 9, ChannelTarget::Alpha)})
        EXPECT_TRUE(sameColour(picture.after(effect), picture));
}

TEST(Edges, NeedAnImage) {
    expectStateTests(findEdges(ChannelTarget::RGB));
    expectStateTests(trace(1, 9, ChannelTarget::RGB));
    expectStateTests(glow(1, 1, 1));
}

}  // namespace
}  // namespace krl::test
