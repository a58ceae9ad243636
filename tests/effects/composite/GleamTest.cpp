#include <gtest/gtest.h>

#include <limits>

#include "effects/composite/GleamStages.h"
#include "reference/CompositeReference.h"
#include "reference/GleamReference.h"

namespace krl::test {
namespace {

auto gleaming(const Picture& front, const GleamNumbers& n) {
    return [&front, n](ImageEngine& e) {
        const GleamLook& look = n.look;
        return gleamBlurComposite(
            e, front.asSecondImage(),
            {look.compositeBlendMethod, look.compositeTransparency, look.black, look.white, n.blur,
             look.blendMethod, look.brightness, look.transparency, n.colours, look.colourMethod});
    };
}

auto zooming(const Picture& front, const GleamNumbers& n) {
    return [&front, n](ImageEngine& e) {
        const GleamLook& look = n.look;
        return gleamZoomComposite(
            e, front.asSecondImage(),
            {look.compositeBlendMethod, look.compositeTransparency, look.black, look.white, n.centre,
             n.strength, n.falloff, look.blendMethod, look.brightness, look.transparency, n.colours,
             look.colourMethod, n.quality, n.distance});
    };
}

const std::vector<std::vector<CurveKey>> kColourLists = {{},
                                                         {{255, 200, 40, 0}},
                                                         {{10, 20, 60, 0}, {255, 240, 160, 255}},
                                                         {{255, 0, 0, 200}, {0, 80, 255, 30}, {9, 9, 9, 90}}};

TEST(GleamGain, DrivesLevelsTowardWhite) {
    const ByteCurve none = gleamGain(0), half = gleamGain(0.5f), all = gleamGain(1), beyond = gleamGain(7);
    for (size_t i = 0; i < 256; ++i) {
        EXPECT_EQ(none[i], i);
        EXPECT_EQ(half[i], std::min<size_t>(2 * i, 255));
        EXPECT_EQ(all[i], 255);
        EXPECT_EQ(beyond[i], 255);
    }
    EXPECT_EQ(gleamGain(-3), none);
}

TEST(GleamBlur, FollowsTheSlowRoad) {
    const Picture image = Picture::random(61, 23, 1), front = Picture::random(61, 23, 2);
    for (const auto& colours : kColourLists)
        for (GleamColour method : {GleamColour::FromImage, GleamColour::ColouriseImage})
            for (int32_t blur : {0, 5}) {
                GleamNumbers n;
                n.look = {BlendMode::Screen, 200, 60, 220, BlendMode::Add, 0.3f, 230, {}, method};
                n.colours = colours;
                n.blur = blur;
                EXPECT_EQ(image.after(gleaming(front, n)), slowGleamBlur(image, front, n))
                    << colours.size() << ' ' << int(method) << ' ' << blur;
            }
}

TEST(GleamBlur, FollowsTheSlowRoadInEveryMode) {
    const Picture image = Picture::random(33, 9, 1), front = Picture::random(33, 9, 2);
    for (const auto& [symbol, mode] : kCompositeBlends) {
        GleamNumbers n;
        n.look = {mode, 255, 0, 255, BlendMode::Normal, 0, 128, {}, GleamColour::FromImage};
        EXPECT_EQ(image.after(gleaming(front, n)), slowGleamBlur(image, front, n)) << symbol;
        n.look = {BlendMode::Normal, 100, 0, 255, mode, 0, 300, {}, GleamColour::FromImage};
        EXPECT_EQ(image.after(gleaming(front, n)), slowGleamBlur(image, front, n)) << symbol;
    }
}

TEST(GleamBlur, OfNoOpacityLaysNothing) {
    const Picture image = Picture::random(13, 7, 1), front = Picture::random(13, 7, 2);
    GleamNumbers n;
    n.look.compositeTransparency = n.look.transparency = 0;
    EXPECT_EQ(image.after(gleaming(front, n)), image);
    // `noBlend` takes no notice of it: the light itself is what remains.
    n.look.blendMethod = BlendMode::NoBlend;
    EXPECT_TRUE(sameColour(image.after(gleaming(front, n)), front));
}

TEST(GleamBlur, OfNoBlendReplacesTheImageByTheForeground) {
    const Picture image = Picture::random(13, 7, 1), front = Picture::random(13, 7, 2);
    GleamNumbers n;
    n.look.compositeBlendMethod = BlendMode::NoBlend;
    n.look.compositeTransparency = n.look.transparency = 0;
    EXPECT_TRUE(sameColour(image.after(gleaming(front, n)), front));
    EXPECT_TRUE(sameAlpha(image.after(gleaming(front, n)), image));
}

TEST(GleamBlur, OfAnEmptyListIsGreyLight) {
    const Picture image(3, 1, {0, 0, 0, 255}), front(3, 1, {90, 60, 30, 255});
    GleamNumbers n;
    n.look.compositeTransparency = 0;
    n.look.blendMethod = BlendMode::NoBlend;
    n.look.colourMethod = GleamColour::ColouriseImage;
    EXPECT_EQ(image.after(gleaming(front, n)), Picture(3, 1, {60, 60, 60, 255}));
}

TEST(GleamBlur, RefusesWhatItCannotUse) {
    Picture image = Picture::random(5, 4);
    const Picture before = image, narrow(4, 4);
    EXPECT_EQ(image.apply(gleaming(narrow, {})), kStatusForegroundSize);
    EXPECT_EQ(image.apply(zooming(narrow, {})), kStatusForegroundSize);
    const SecondImage none{nullptr, {5, 4, 20, 0, 0, 0}}, noneNarrow{nullptr, {4, 4, 16, 0, 0, 0}};
    const auto blur = [](const SecondImage& front) {
        return [&front](ImageEngine& e) { return gleamBlurComposite(e, front, {.blur = 3}); };
    };
    const auto zoom = [](const SecondImage& front) {
        return [&front](ImageEngine& e) { return gleamZoomComposite(e, front, {.userDistance = 5}); };
    };
    EXPECT_EQ(image.apply(blur(none)), kStatusNoImage);
    EXPECT_EQ(image.apply(blur(noneNarrow)), kStatusNoImage);
    EXPECT_EQ(image.apply(zoom(none)), kStatusNoImage);
    EXPECT_EQ(image.apply(zoom(noneNarrow)), kStatusForegroundSize);
    EXPECT_EQ(image, before);
}

TEST(Gleams, AreTheSameInAnyNumberOfBands) {
    GleamNumbers n;
    n.look = {BlendMode::Screen, 200, 60, 220, BlendMode::Add, 0.3f, 230, {}, GleamColour::ColouriseImage};
    n.colours = kColourLists[2];
    n.blur = 3;
    n.centre = {2, 3};
    expectSameForAnyBands([&](ImageEngine& e) {
        return gleaming(Picture::random(e.buffer()->width, e.buffer()->height, 5), n)(e);
    });
    expectSameForAnyBands([&](ImageEngine& e) {
        return zooming(Picture::random(e.buffer()->width, e.buffer()->height, 5), n)(e);
    });
    const Picture front(2, 2);
    expectStateTests(gleaming(front, n));
    expectStateTests(zooming(front, n));
}

TEST(GleamZoom, FollowsTheSlowRoad) {
    const Picture image = Picture::random(31, 23, 1), front = Picture::random(31, 23, 2);
    for (SampleQuality quality : {SampleQuality::Standard, SampleQuality::Antialiased})
        for (Point centre : {Point{14, 20}, {0, 0}, {22, 30}, {-7, 60}, {100, -3}, {15, 500}})
            for (int32_t distance : {-9, 1, 7, 60, 1000})
                for (float falloff : {0.0f, 0.3f, 0.97f, 1.5f}) {
                    if (distance > 100 && centre.y != 14) continue;  // the slow road is very slow here
                    GleamNumbers n;
                    n.look = {BlendMode::Normal,     100, 120, 255, BlendMode::Screen, 0.1f, 255, {},
                              GleamColour::FromImage};
                    n.quality = quality;
                    n.centre = centre;
                    n.distance = distance;
                    n.falloff = falloff;
                    n.strength = distance == 7 ? 3.7f : 0.8f;
                    ASSERT_EQ(image.after(zooming(front, n)), slowGleamZoom(image, front, n))
                        << int(quality) << ' ' << centre.y << ' ' << centre.x << ' ' << distance << ' '
                        << falloff;
                }
}

TEST(GleamZoom, RaysSideBySideFollowTheSlowRoad) {
    const Picture image = Picture::random(190, 83, 1), front = Picture::random(190, 83, 2);
    for (SampleQuality quality : {SampleQuality::Standard, SampleQuality::Antialiased})
        for (Point centre : {Point{41, 95}, {0, 189}, {-60, 30}, {300, 400}, {46300, 95}, {46400, 95}})
            for (float strength : {0.03f, 0.7f, 1.37f, 28.0f, 31.5f}) {
                GleamNumbers n;
                n.quality = quality;
                n.centre = centre;
                n.distance = 9;
                n.strength = strength;
                n.falloff = 0.4f;
                EXPECT_EQ(image.after(zooming(front, n)), slowGleamZoom(image, front, n))
                    << int(quality) << ' ' << centre.y << ' ' << strength;
            }
}

TEST(GleamZoom, ColoursTheLightAfterTheRays) {
    const Picture image = Picture::random(31, 19, 1), front = Picture::random(31, 19, 2);
    for (const auto& colours : kColourLists) {
        GleamNumbers n;
        n.look.colourMethod = GleamColour::ColouriseImage;
        n.colours = colours;
        n.centre = {9, 12};
        EXPECT_EQ(image.after(zooming(front, n)), slowGleamZoom(image, front, n)) << colours.size();
    }
}

/// An image of zeros on which a gleam zoom shows its light: the light's alpha is its opacity.
Picture lightOf(const Picture& front, GleamNumbers n) {
    n.look.compositeTransparency = 0;
    n.look.blendMethod = BlendMode::Lighten;
    return Picture(front.width(), front.height(), {0, 0, 0, 255}).after(zooming(front, n));
}

TEST(GleamZoom, WithoutDistanceOrStrengthThereIsNoLight) {
    const Picture front = Picture::random(16, 12, 3), dark(16, 12, {0, 0, 0, 255});
    GleamNumbers n;
    n.centre = {5, 5};
    n.distance = 0;
    EXPECT_EQ(lightOf(front, n), dark);
    n.distance = 3;
    for (float strength : {0.0f, -4.0f, std::numeric_limits<float>::quiet_NaN()}) {
        n.strength = strength;
        EXPECT_EQ(lightOf(front, n), dark);
    }
}

TEST(GleamZoom, WithoutFalloffOnlyThePixelItselfCounts) {
    const Picture front = Picture::grey({{10, 20, 30, 40}});
    GleamNumbers n;
    n.falloff = 0;
    n.distance = 1;
    EXPECT_EQ(lightOf(front, n), Picture::grey({{9, 19, 29, 39}}));  // each at an opacity of 255 / 256
}

TEST(GleamZoom, OfNegativeDistanceLeavesTheLowByteOfItsNegativeSum) {
    const Picture front(4, 3, {40, 100, 200, 1});  // -40, -100, -200 and an alpha of -1
    GleamNumbers n;
    n.falloff = 0;
    n.distance = -1;
    // 216, 156 and 56 at an opacity of 255 / 256
    EXPECT_EQ(lightOf(front, n), Picture(4, 3, {215, 155, 55, 255}));
}

TEST(GleamZoom, CarriesLightAwayFromTheCentre) {
    Picture front(9, 1, {0, 0, 0, 255});
    front.at(4, 0) = {255, 255, 255, 255};
    GleamNumbers n;
    n.falloff = 1;
    n.distance = 1;
    const Picture light = lightOf(front, n);
    for (int x = 0; x < 4; ++x) EXPECT_EQ(light.at(x, 0).red, 0);
    // A level is lost to the shift, and one to truncation at each step.
    for (int x = 4; x < 9; ++x) EXPECT_EQ(light.at(x, 0).red, 254 - (x - 4)) << x;
}

TEST(Gleams, TakeExtremesNaNAndInfinity) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(),
                    infinity = std::numeric_limits<float>::infinity();
    constexpr int32_t most = 2147483647, least = -most - 1;
    for (float odd : {nan, infinity, -infinity, 3e38f, -1.0f, 9e6f})
        for (int32_t number : {most, least, 0})
            for (SampleQuality quality : {SampleQuality::Standard, SampleQuality::Antialiased}) {
                Picture image = Picture::random(7, 5, 1);
                const Picture front = Picture::random(7, 5, 2);
                GleamNumbers n;
                n.look = {BlendMode::Add,        number, number, number, BlendMode::Add, odd, number, {},
                          GleamColour::FromImage};
                n.quality = quality;
                n.strength = n.falloff = odd;
                n.distance = number;
                n.centre = {number, number};
                EXPECT_EQ(image.apply(zooming(front, n)), kStatusOk);
                n.centre = {2, 3};
                EXPECT_EQ(image.apply(zooming(front, n)), kStatusOk);
                n.blur = number == most ? 40 : number;
                EXPECT_EQ(image.apply(gleaming(front, n)), kStatusOk);
            }
}

}  // namespace
}  // namespace krl::test
