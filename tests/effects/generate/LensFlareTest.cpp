#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

#include "core/LookupTables.h"
#include "effects/generate/FlareCanvas.h"
#include "effects/generate/FlareScene.h"

namespace krl {
namespace {

using test::flared;
using test::Picture;

/// One pixel under a hard-edged disc of `brightness`.
Pixel dotted(Pixel under, float brightness, std::vector<CurveKey> keys = {}, int32_t transparency = 0,
             BlendMode blend = BlendMode::Normal) {
    const FlareElement disc{.origin = {0, 0},
                            .brightness = brightness,
                            .transparency = transparency,
                            .blend = blend,
                            .radius = 3};
    return flared(Picture(1, 1, under), disc, std::move(keys)).at(0, 0);
}

constexpr Pixel kBlack{0, 0, 0, 255};

TEST(FlarePlot, PaintsWhiteWithoutColoursAndTheOneColourAtEveryValue) {
    EXPECT_EQ(dotted(kBlack, 255), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(dotted(kBlack, 128), (Pixel{128, 128, 128, 255}));
    EXPECT_EQ(dotted(kBlack, 255, {{200, 100, 50, 0}}), (Pixel{50, 100, 200, 255}));
    EXPECT_EQ(dotted({0, 0, 0, 0}, 51, {{200, 100, 50, 0}}), (Pixel{50, 100, 200, 51}));
}

TEST(FlarePlot, TakesTheColourFromTheValueBeforeTransparency) {
    const std::vector<CurveKey> redToBlue{{255, 0, 0, 0}, {0, 0, 255, 255}};
    EXPECT_EQ(dotted({0, 0, 0, 0}, 255, redToBlue), (Pixel{255, 0, 0, 255}));
    const Pixel dim = dotted({0, 0, 0, 0}, 255, redToBlue, 127);
    EXPECT_EQ(dim.blue, 255);
    EXPECT_EQ(dim.alpha, 128);
    EXPECT_GT(dotted({0, 0, 0, 0}, 20, redToBlue).red, 225);
}

TEST(FlarePlot, PaintsNothingAtOrBelowTheTransparency) {
    const Pixel under{10, 20, 30, 40};
    EXPECT_EQ(dotted(under, 100, {}, 100), under);
    EXPECT_EQ(dotted(under, 100, {}, 255), under);
    EXPECT_NE(dotted(under, 101, {}, 100), under);
}

TEST(FlarePlot, CountsValuesAbove255As255) {
    EXPECT_EQ(dotted(kBlack, 1000), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(dotted({0, 0, 0, 0}, 400, {}, 272), (Pixel{255, 255, 255, 128}));
    EXPECT_EQ(dotted(kBlack, 1e30f), kBlack);  // no integer, so no light
}

TEST(FlarePlot, AddsBlueAndScreensTheRest) {
    const Pixel grey{100, 100, 100, 255};
    EXPECT_EQ(dotted(grey, 255, {{100, 100, 100, 0}}, 0, BlendMode::Add), (Pixel{200, 160, 160, 255}));
    EXPECT_EQ(dotted(grey, 255, {{100, 100, 100, 0}}, 0, BlendMode::Screen), (Pixel{160, 160, 160, 255}));
    const Pixel half{100, 100, 100, 128};  // seen through its own alpha: 50
    EXPECT_EQ(dotted(half, 255, {{100, 100, 100, 0}}, 0, BlendMode::Add), (Pixel{150, 130, 130, 255}));
}

TEST(FlareColours, AreUsedInListOrderWithoutOneAtZero) {
    FlareCanvas canvas;
    canvas.draw({.colours = {{10, 20, 30, 100}, {200, 100, 0, 180}}});
    const FlareState& state = canvas.state();
    // 80 to 180 in the longest step, then on to 255 at the last value.
    EXPECT_EQ(state.samples[0].front(), (CurveSample{30, 100}));
    EXPECT_EQ(state.samples[0].back().position, 255);
    EXPECT_EQ(state.samples[2].back().value, 200);
    EXPECT_EQ(state.samples[2].size(), 191u + 76u);
    EXPECT_EQ(state.sampleStep[2], 1);
    canvas.draw({.colours = {{10, 20, 30, 0}, {200, 100, 0, 255}}});
    EXPECT_EQ(canvas.state().samples[1].size(), 256u);
    canvas.draw({});
    EXPECT_TRUE(canvas.state().samples[1].empty());
    EXPECT_EQ(canvas.state().sampleStep[1], 0);
}

TEST(FlareColours, AtAbsurdPlacesStayWithinReason) {
    FlareCanvas canvas;
    canvas.draw({.colours = {{10, 20, 30, NAN}, {200, 100, 0, 1e30f}, {1, 2, 3, -INFINITY}}});
    EXPECT_LT(canvas.state().samples[0].size(), size_t{1} << 24);
}

TEST(LensFlare, WithoutAnImageIsAcceptedAndPaintsNothing) {
    ImageEngine engine;
    engine.allocateTables();
    engine.buildTables();
    std::vector<Pixel> pixels(100, kBlack);
    engine.load(reinterpret_cast<uint8_t*>(pixels.data()), {10, 10, 40, 0, 0, 0});
    engine.unload();
    FlareCanvas canvas(engine);
    for (const FlareElement& element : test::oneOfEachKind()) canvas.draw(element);
    EXPECT_EQ(lensFlare(engine, test::oneOfEachKind()), kStatusNoImage);
    EXPECT_EQ(pixels, std::vector<Pixel>(100, kBlack));
}

TEST(LensFlare, PaintsEveryKindAndTheSameAgain) {
    for (const FlareElement& element : test::oneOfEachKind()) {
        const Picture painted = flared(Picture(60, 40), element, test::greyRamp());
        EXPECT_FALSE(painted == Picture(60, 40)) << int(element.kind);
        EXPECT_TRUE(painted == flared(Picture(60, 40), element, test::greyRamp())) << int(element.kind);
    }
}

TEST(LensFlare, IsTheSameForAnyBands) {
    for (const FlareElement& element : test::oneOfEachKind()) {
        SCOPED_TRACE(int(element.kind));
        test::expectSameForAnyBands([&](ImageEngine& engine) {
            if (Status state = engine.imageStatus()) return state;
            FlareElement placed = element;
            placed.origin = {engine.buffer()->height / 2, engine.buffer()->width / 2};
            placed.colours = {{255, 0, 0, 0}, {0, 255, 0, 90}, {255, 255, 255, 255}};
            return lensFlare(engine, {&placed, 1});
        });
    }
}

TEST(LensFlare, PaintsLaterElementsOverEarlierOnes) {
    std::vector<FlareElement> discs(2, {.origin = {5, 5}, .brightness = 255, .radius = 4});
    discs[0].colours = {{255, 0, 0, 0}};
    discs[1].colours = {{0, 255, 0, 0}};
    const Picture both = Picture(11, 11).after([&](ImageEngine& engine) { return lensFlare(engine, discs); });
    EXPECT_EQ(both.at(5, 5), (Pixel{0, 255, 0, 255}));
}

/// Every setting that can be absurd, absurd in turn.
std::vector<FlareElement> absurdVersions(const FlareElement& element) {
    std::vector<FlareElement> versions;
    const float inf = std::numeric_limits<float>::infinity();
    for (float value : {NAN, inf, -inf, 3e38f, 1e9f, 2e6f, -1e9f, 1e-30f, 0.0f})
        for (auto setting :
             {&FlareElement::brightness, &FlareElement::radius, &FlareElement::angle,
              &FlareElement::outerFeather, &FlareElement::innerFeather, &FlareElement::outerThickness,
              &FlareElement::innerThickness, &FlareElement::length, &FlareElement::thickness,
              &FlareElement::position, &FlareElement::softness, &FlareElement::density, &FlareElement::noise,
              &FlareElement::arcCompleteness}) {
            versions.push_back(element);
            versions.back().*setting = value;
        }
    for (int32_t value : {INT32_MIN, INT32_MAX, 1000000, -1, 0})
        for (auto setting :
             {&FlareElement::count, &FlareElement::width, &FlareElement::aperture, &FlareElement::seed,
              &FlareElement::expandShape, &FlareElement::shapeBlur, &FlareElement::transparency}) {
            versions.push_back(element);
            versions.back().*setting = value;
        }
    for (Point place :
         {Point{INT32_MIN, INT32_MAX}, Point{INT32_MAX, 20}, Point{1 << 30, 1 << 30}, Point{-5, -7}}) {
        versions.push_back(element);
        versions.back().origin = place;
        versions.push_back(element);
        versions.back().handle = place;
    }
    return versions;
}

TEST(LensFlare, SurvivesAbsurdSettings) {
    for (const FlareElement& element : test::oneOfEachKind())
        for (const FlareElement& absurd : absurdVersions(element)) {
            const std::clock_t start = std::clock();
            flared(Picture(60, 40), absurd, test::greyRamp(), 2);
            EXPECT_LT(double(std::clock() - start) / CLOCKS_PER_SEC, 20) << int(element.kind);
        }
}

}  // namespace
}  // namespace krl
