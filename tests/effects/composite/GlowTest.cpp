#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "core/LookupTables.h"
#include "kernels/blur/TentBlur.h"
#include "krlimage/composite.h"
#include "reference/CompositeReference.h"

namespace krl::test {
namespace {

auto spilling(const Picture& background, int32_t blur, BlendMode mode) {
    return [&background, blur, mode](ImageEngine& e) {
        return lightSpillComposite(e, background.asSecondImage(), blur, mode);
    };
}

struct Glow {
    int32_t feather = 0, expand = 0, outer = 0;
    std::vector<CurveKey> outerColours, coreColours;
    int32_t intensity = 255, transparency = 0;
};

auto glowing(const Glow& g) {
    return [g](ImageEngine& e) {
        return outerGlow(
            e, {g.feather, g.expand, g.outer, g.outerColours, g.coreColours, g.intensity, g.transparency});
    };
}

constexpr CurveKey kRed{255, 0, 0, 0}, kBlue{0, 0, 255, 100}, kGreen{10, 240, 30, 50};

TEST(LightSpill, FollowsTheSlowRoadInEveryMode) {
    const Picture image = Picture::random(37, 21, 1), background = Picture::random(37, 21, 2);
    const LookupTables& t = sharedTables();
    for (const auto& [symbol, mode] : kLightBlends)
        for (int32_t blur : {0, 4}) {
            Picture light = image;
            for (size_t i = 0; i < light.pixels().size(); ++i)
                light.pixels()[i].alpha = uint8_t(255 - background.pixels()[i].alpha);
            if (blur > 0) {
                EXPECT_EQ(TentBlur(EngineOf(1)).blurRGBA(light.pixels().data(), 21, 37, blur), kStatusOk);
            }
            Picture expected = image;
            for (size_t i = 0; i < light.pixels().size(); ++i)
                for (size_t c = 0; c < 3; ++c) {
                    const Pixel p = background.pixels()[i], s = light.pixels()[i];
                    const int lit = blendChannel(p[c], s[c], mode, s.alpha, t), before = image.pixels()[i][c];
                    expected.pixels()[i][c] = uint8_t(before + (((lit - before) * p.alpha) >> 8));
                }
            EXPECT_EQ(image.after(spilling(background, blur, mode), 2), expected) << symbol << ' ' << blur;
        }
}

TEST(LightSpill, WithoutBlurShowsTheBackgroundWhereItIsOpaque) {
    const Picture image(4, 1, {10, 20, 30, 40}), background(4, 1, {0, 20, 255, 255}),
        open(4, 1, {9, 9, 9, 0});
    EXPECT_EQ(image.after(spilling(background, 0, BlendMode::Add)), Picture(4, 1, {0, 20, 254, 40}));
    EXPECT_EQ(image.after(spilling(open, 0, BlendMode::Add)), image);
}

TEST(LightSpill, CarriesLightOverTheEdge) {
    Picture image(40, 1, {255, 255, 255, 255}), background(40, 1, {0, 0, 0, 255});
    for (int x = 0; x < 20; ++x) background.at(x, 0).alpha = 0;
    const Picture result = image.after(spilling(background, 10, BlendMode::Screen));
    EXPECT_EQ(result.at(19, 0), image.at(19, 0));
    EXPECT_GT(result.at(20, 0).red, 60);
    EXPECT_LT(result.at(23, 0).red, result.at(20, 0).red);
    EXPECT_EQ(result.at(35, 0), (Pixel{0, 0, 0, 255}));
}

TEST(LightSpill, RefusesWhatItCannotUse) {
    Picture image = Picture::random(5, 4);
    const Picture before = image;
    EXPECT_EQ(image.apply(spilling(Picture(4, 4), 3, BlendMode::Add)), kStatusMaskSize);
    const auto nothing = [](int32_t width) {
        return [width](ImageEngine& e) {
            return lightSpillComposite(e, {nullptr, {width, 4, width * 4, 0, 0, 0}}, 3, BlendMode::Add);
        };
    };
    EXPECT_EQ(image.apply(nothing(5)), kStatusNoImage);
    EXPECT_EQ(image.apply(nothing(6)), kStatusMaskSize);
    EXPECT_EQ(image, before);
}

TEST(LightSpill, IsTheSameInAnyNumberOfBands) {
    expectSameForAnyBands([](ImageEngine& e) {
        return spilling(Picture::random(e.buffer()->width, e.buffer()->height, 5), 4,
                        BlendMode::SoftLight)(e);
    });
    const Picture two(2, 2);
    expectStateTests(spilling(two, 4, BlendMode::Add));
}

TEST(OuterGlow, OfAnOpaquePictureIsFlatColour) {
    const Picture picture = [] {
        Picture p = Picture::random(9, 5);
        for (Pixel& q : p.pixels()) q.alpha = 255;
        return p;
    }();
    EXPECT_EQ(picture.after(glowing({.outerColours = {kBlue}, .coreColours = {kRed}})),
              Picture(9, 5, {0, 0, 255, 255}));
    // A core that lets everything through shows the halo.
    EXPECT_EQ(picture.after(glowing({.outerColours = {kBlue}, .coreColours = {kRed}, .transparency = 255})),
              Picture(9, 5, {255, 0, 0, 255}));
}

TEST(OuterGlow, LeavesWhatIsClearAlone) {
    const Picture picture(4, 3, {12, 34, 56, 0});
    EXPECT_EQ(picture.after(glowing({3, 5, 6, {kBlue}, {kRed}})), picture);
}

TEST(OuterGlow, IntensityStretchesTheHalosColour) {
    const Picture picture(1, 1, {0, 0, 0, 255});
    const CurveKey grey{100, 0, 1, 0};
    const auto halo = [&](int32_t intensity) {
        return picture
            .after(glowing(
                {.outerColours = {grey}, .coreColours = {kRed}, .intensity = intensity, .transparency = 255}))
            .at(0, 0);
    };
    EXPECT_EQ(halo(255), (Pixel{1, 0, 100, 255}));
    EXPECT_EQ(halo(9999), (Pixel{1, 0, 100, 255}));
    EXPECT_EQ(halo(127), (Pixel{2, 0, 200, 255}));
    EXPECT_EQ(halo(0), (Pixel{255, 0, 255, 255}));
    EXPECT_EQ(halo(-5), (Pixel{255, 0, 255, 255}));
}

TEST(OuterGlow, ExpandsTheShapeByTheBlursReach) {
    Picture picture(31, 1, {0, 0, 0, 0});
    picture.at(15, 0).alpha = 255;
    const Picture result =
        picture.after(glowing({.expand = 5, .outerColours = {kBlue}, .coreColours = {kRed}}));
    for (int x = 0; x < 31; ++x) {
        const bool near = std::abs(x - 15) <= 4;  // a radius of 5 reaches 4 samples
        EXPECT_EQ(result.at(x, 0).alpha, near ? 255 : 0) << x;
    }
    EXPECT_EQ(result.at(15, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(result.at(13, 0), (Pixel{255, 0, 0, 255}));
}

TEST(OuterGlow, RampsColourOverAlpha) {
    Picture picture = Picture::ramp();
    for (int x = 0; x < 256; ++x) picture.at(x, 0).alpha = uint8_t(x);
    // Only the halo shows. Red at 0, blue at 100 percent: 255 of 255.
    const Picture result =
        picture.after(glowing({.outerColours = {kBlue, kRed}, .coreColours = {kRed}, .transparency = 255}));
    for (int x = 1; x < 256; ++x) {
        EXPECT_EQ(result.at(x, 0).alpha, x);
        EXPECT_NEAR(result.at(x, 0).blue, x, 1) << x;
        EXPECT_NEAR(result.at(x, 0).red, 255 - x, 1) << x;
        EXPECT_EQ(result.at(x, 0).green, 0);
    }
    EXPECT_EQ(result.at(0, 0), (Pixel{0, 0, 255, 0}));  // the ramp colours what is clear, too
    EXPECT_EQ(result.at(255, 0), (Pixel{255, 0, 0, 255}));
}

TEST(OuterGlow, ComposesTheCoreOverTheHaloInStraightAlpha) {
    const Picture picture = Picture::random(61, 17, 4);
    const Picture result =
        picture.after(glowing({.outerColours = {kGreen}, .coreColours = {kRed, kBlue}, .transparency = 90}));
    // a core without a halo behind it
    const Picture core =
        picture.after(glowing({.outerColours = {kRed, kBlue}, .coreColours = {kRed}, .transparency = 255}));
    for (size_t i = 0; i < result.pixels().size(); ++i) {
        const Pixel p = picture.pixels()[i];
        if (p.alpha == 0) continue;
        // The ramp as halo alone is the ramp of the core, up to the level that its own over costs.
        const Pixel colour = core.pixels()[i];
        Pixel front{colour.blue, colour.green, colour.red, uint8_t(p.alpha * (255 - 90) / 255)};
        const Pixel expected =
            compositedPixel({30, 240, 10, p.alpha}, front, BlendMode::Normal, AlphaRule::BackgroundAlphaYes);
        EXPECT_EQ(result.pixels()[i].alpha, expected.alpha);
        EXPECT_NEAR(result.pixels()[i].blue, expected.blue, 1);
        EXPECT_NEAR(result.pixels()[i].red, expected.red, 1);
        EXPECT_NEAR(result.pixels()[i].green, expected.green, 1);
    }
}

TEST(OuterGlow, SkipsBlursOfNothingAndLimitsItsNumbers) {
    const Picture picture = Picture::random(23, 11, 6);
    const Glow plain{.outerColours = {kGreen}, .coreColours = {kRed}, .intensity = 0, .transparency = 0};
    Glow beyond = plain;
    beyond.feather = beyond.expand = beyond.outer = -2147483647 - 1;
    beyond.intensity = beyond.transparency = -2147483647 - 1;
    EXPECT_EQ(picture.after(glowing(beyond)), picture.after(glowing(plain)));
    Glow most = plain, limit = plain;
    most.intensity = most.transparency = 2147483647;
    limit.intensity = limit.transparency = 255;
    EXPECT_EQ(picture.after(glowing(most)), picture.after(glowing(limit)));
}

TEST(OuterGlow, TakesAnyLists) {
    const Picture picture = Picture::random(23, 11, 6);
    const CurveKey odd{-300, 9999, 70, -40}, far{1, 2, 3, 3e9f};
    for (const auto& list : {std::vector<CurveKey>{}, {odd}, {odd, far}, {far, far, far, odd}}) {
        Picture result = picture;
        EXPECT_EQ(result.apply(glowing({2, 3, 4, list, list, 100, 100})), kStatusOk);
    }
}

TEST(OuterGlow, IsTheSameInAnyNumberOfBands) {
    const Glow glow{2, 3, 4, {kRed, kGreen, kBlue}, {kBlue, kRed}, 120, 60};
    expectSameForAnyBands(glowing(glow));
    expectStateTests(glowing(glow));
}

}  // namespace
}  // namespace krl::test
