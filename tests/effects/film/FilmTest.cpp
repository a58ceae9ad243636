#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "core/Faults.h"
#include "core/LookupTables.h"
#include "effects/film/FilmEffects.h"
#include "kernels/ramp/Curve.h"
#include "reference/FilmReference.h"
#include "reference/TentBlurReference.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Every pixel of `picture` through `change`.
template <class Change>
Picture each(Picture picture, Change&& change) {
    for (Pixel& p : picture.pixels()) p = change(p);
    return picture;
}

Picture bleached(const Picture& picture, int32_t opacity, float contrast, float saturation) {
    return picture.after([=](ImageEngine& e) { return bleachBypass(e, opacity, contrast, saturation); }, 2);
}

Picture night(const Picture& picture, int32_t blur, const reference::Night& n, ChannelTarget target) {
    const Colour colour(n.colour.red, n.colour.green, n.colour.blue);
    return picture.after(
        [&](ImageEngine& e) {
            return dayForNight(e, blur, n.blurOpacity, colour, n.colorOpacity, n.highlightOpacity,
                               n.saturation, n.brightness, n.contrast, n.gamma, target);
        },
        3);
}

Picture expectedNight(Picture picture, int32_t blur, const reference::Night& n, bool withAlpha) {
    const auto soft = reference::tentPixels(picture.pixels(), picture.height(), picture.width(), blur, 0, 3);
    for (size_t i = 0; i < soft.size(); ++i)
        picture.pixels()[i] =
            reference::nocturnal(picture.pixels()[i], soft[i], n, withAlpha, sharedTables());
    return picture;
}

Picture threeStripped(const Picture& picture, int32_t red, int32_t green, int32_t blue) {
    return picture.after([=](ImageEngine& e) { return threeStripColor(e, red, green, blue); });
}

constexpr reference::Night kMoonlight{0.4f, {200, 140, 90, 0}, 0.3f, 0.6f, 0.7f, -20, 1.2f, 0.9f};

}  // namespace

TEST(BleachBypass, EqualsItsStepsForAnySettings) {
    const Picture source = Picture::random(64, 33);
    for (int32_t opacity : {-5, 0, 1, 128, 255, 900})
        for (float contrast : {-1.0f, 0.0f, 0.7f, 1.0f, 2.0f, 9.0f})
            for (float saturation : {-1.0f, 0.0f, 0.5f, 1.0f, 1.9f, kInfinity}) {
                const auto step = [&](Pixel p) {
                    return reference::bleached(p, opacity, contrast, saturation, sharedTables());
                };
                ASSERT_EQ(bleached(source, opacity, contrast, saturation), each(source, step))
                    << opacity << ' ' << contrast << ' ' << saturation;
            }
}

TEST(BleachBypass, WithoutOpacityKeepsColoursAndStillSaturates) {
    const Picture source = Picture::random(20, 20);
    EXPECT_EQ(bleached(source, 0, 1.0f, 1.0f), source);
    const Picture grey = bleached(source, 0, 1.0f, 0.0f);
    for (size_t i = 0; i < grey.pixels().size(); ++i) {
        const Pixel& p = grey.pixels()[i];
        EXPECT_TRUE(p.blue == p.green && p.green == p.red);
        EXPECT_EQ(p.alpha, source.pixels()[i].alpha);
    }
}

TEST(BleachBypass, OfAnUnknowableSaturationKeepsTheBrightestByte) {
    const Picture source = Picture::random(9, 9);
    const Picture result = bleached(source, 0, kNaN, kNaN);
    for (size_t i = 0; i < result.pixels().size(); ++i) {
        const Pixel& p = result.pixels()[i];
        EXPECT_EQ(std::min({p.blue, p.green, p.red}), 0);
    }
}

TEST(BleachBypass, TestsTheStateAndIsTheSameForAnyBands) {
    expectStateTests([](ImageEngine& e) { return bleachBypass(e, 1, 1, 1); });
    expectSameForAnyBands([](ImageEngine& e) { return bleachBypass(e, 200, 1.3f, 0.6f); });
}

TEST(DayForNight, EqualsItsStepsForAnySettings) {
    const Picture source = Picture::random(40, 21);
    std::vector<reference::Night> nights{kMoonlight};
    for (float opacity : {-1.0f, 0.0f, 1.0f, 3.0f}) {
        reference::Night n = kMoonlight;
        n.blurOpacity = opacity;
        nights.push_back(n);
        n.colorOpacity = 1.0f - opacity;
        nights.push_back(n);
        n.highlightOpacity = opacity;
        n.saturation = 1.0f;
        nights.push_back(n);
        n.brightness = 4000;
        n.contrast = opacity;
        nights.push_back(n);
        n.gamma = 7.0f;
        n.brightness = 3;
        nights.push_back(n);
    }
    for (size_t i = 0; i < nights.size(); ++i)
        for (int32_t blur : {0, 5}) {
            EXPECT_EQ(night(source, blur, nights[i], ChannelTarget::RGB),
                      expectedNight(source, blur, nights[i], false))
                << i;
            EXPECT_EQ(night(source, blur, nights[i], ChannelTarget::RGBA),
                      expectedNight(source, blur, nights[i], true))
                << i;
        }
}

TEST(DayForNight, FallsOneShortOfFullStrength) {
    reference::Night n{1, {255, 255, 255, 0}, 1, 0, 1, 0, 1, 1};
    const Picture lit = night(Picture(1, 1, {200, 200, 200, 255}), 0, n, ChannelTarget::RGB);
    EXPECT_EQ(lit.at(0, 0), (Pixel{199, 199, 199, 255}));
}

TEST(DayForNight, SurvivesAGammaOfNothing) {
    for (float gamma : {0.0f, -0.0f, -3.0f, kNaN}) {
        reference::Night n = kMoonlight;
        n.gamma = gamma;
        n.saturation = n.contrast = n.colorOpacity = kNaN;
        night(Picture::random(9, 9), 2, n, ChannelTarget::RGBA);
    }
    reference::Night n{1, {255, 255, 255, 0}, 1, 0, 1, 0, 1, 0};
    EXPECT_EQ(night(Picture(1, 1, {200, 0, 1, 9}), 0, n, ChannelTarget::RGB).at(0, 0), (Pixel{255, 0, 0, 9}));
}

TEST(DayForNight, TestsTheStateAndIsTheSameForAnyBands) {
    const auto effect = [](ImageEngine& e) {
        return dayForNight(e, 3, 0.5f, Colour(40, 60, 200), 0.4f, 0.5f, 0.8f, -10, 1.1f, 0.8f,
                           ChannelTarget::RGBA);
    };
    expectStateTests(effect);
    expectSameForAnyBands(effect);
}

TEST(TwoStripColor, LeavesTheGreenChannelWhateverItsNumbers) {
    const Picture source = Picture::random(120, 60);
    for (int32_t expand : {0, 255, -1, 256})
        EXPECT_EQ(source.after([=](ImageEngine& e) { return twoStripColor(e, expand, expand, expand); }, 3),
                  each(source, reference::twoStrip));
    EXPECT_EQ(each(Picture(1, 1, {9, 77, 200, 3}), reference::twoStrip).at(0, 0), (Pixel{0, 77, 0, 3}));
}

TEST(TwoStripColor, PrintsBlackAsBlack) {
    const Picture black(2, 2, {0, 0, 0, 17});
    EXPECT_EQ(black.after([](ImageEngine& e) { return twoStripColor(e, 0, 0, 0); }), black);
    expectStateTests([](ImageEngine& e) { return twoStripColor(e, 0, 0, 0); });
}

TEST(TwoStripColor, NeedsNoThreads) {
    Picture picture = Picture::random(4, 4);
    faults().threads = faults().tasks = 0;
    EXPECT_EQ(picture.apply([](ImageEngine& e) { return twoStripColor(e, 0, 0, 0); }, 4), kStatusOk);
    faults().threads = faults().tasks = -1;
}

TEST(ThreeStripColor, EqualsItsStepsForAnyExpands) {
    const Picture source = Picture::random(64, 40);
    for (int32_t expand : {INT32_MIN, -300, -1, 0, 1, 100, 255, 256, 257, INT32_MAX}) {
        const int32_t other = expand == INT32_MIN ? 7 : -(expand / 2);
        const auto step = [=](Pixel p) { return reference::threeStrip(p, expand, 40, other); };
        EXPECT_EQ(threeStripped(source, expand, 40, other), each(source, step)) << expand;
    }
}

TEST(ThreeStripColor, KeepsGreysNearlyAndPrintsNothingThroughShutDyes) {
    const Picture ramp = threeStripped(Picture::ramp(), 0, 0, 0);
    for (int32_t x = 0; x < 256; ++x) {
        EXPECT_EQ(ramp.at(x, 0).blue, x * 510 / 512) << x;
        EXPECT_EQ(ramp.at(x, 0).red, ramp.at(x, 0).blue);
    }
    EXPECT_EQ(threeStripped(Picture::ramp(), 256, 256, 256), Picture(256, 1));
    expectStateTests([](ImageEngine& e) { return threeStripColor(e, 0, 0, 0); });
    expectSameForAnyBands([](ImageEngine& e) { return threeStripColor(e, 9, 50, 120); });
}

TEST(MultiColourise, MixesThePictureWithTheRampAtItsLuma) {
    const std::vector<CurveKey> keys{{255, 200, 0, 200}, {10, 0, 60, 12.75f}, {128, 20, 90, 127.5f}};
    const Picture source = Picture::random(50, 30);
    const LookupTables& t = sharedTables();
    std::vector<CurveKey> sorted = keys;
    sortCurveKeys(sorted);
    const auto padded = padCurveKeys(sorted, 255);
    for (float strength : {-1.0f, 0.0f, 0.35f, 1.0f, kInfinity}) {
        const double s = std::clamp(strength, 0.0f, 1.0f);
        const auto step = [&](Pixel p) {
            const auto luma =
                static_cast<float>(double{t.lumaBlue[p.blue]} + t.lumaGreen[p.green] + t.lumaRed[p.red]);
            const auto place = static_cast<float>(luma * (1.0 / 255.0));
            for (int32_t c = 0; c < 3; ++c) {
                const auto samples = buildChannelCurve(padded, c, 255);
                const auto index = static_cast<size_t>(double(samples.size() - 1) * place);
                uint8_t& byte = p[size_t(c)];
                byte = static_cast<uint8_t>(
                    reference::limit(byte * (1.0 - s) + samples[index].value * s, 0, 255));
            }
            return p;
        };
        EXPECT_EQ(source.after([&](ImageEngine& e) { return multiColourise(e, keys, strength); }, 2),
                  each(source, step))
            << strength;
    }
}

TEST(MultiColourise, WithoutStrengthChangesNothing) {
    const Picture source = Picture::random(30, 30);
    EXPECT_EQ(source.after([](ImageEngine& e) { return multiColourise(e, {}, 0.0f); }), source);
}

TEST(MultiColourise, OfNoColoursIsBlackAndOfOneColourFlat) {
    const Picture ramp = Picture::ramp();
    EXPECT_EQ(ramp.after([](ImageEngine& e) { return multiColourise(e, {}, 1.0f); }), Picture(256, 1));
    const std::vector<CurveKey> one{{30, 20, 10, 99}};
    EXPECT_EQ(ramp.after([&](ImageEngine& e) { return multiColourise(e, one, 1.0f); }),
              Picture(256, 1, {10, 20, 30, 255}));
}

TEST(MultiColourise, TestsTheStateAndIsTheSameForAnyBands) {
    const std::vector<CurveKey> keys{{255, 0, 0, 0}, {0, 0, 255, 300}};
    expectStateTests([&](ImageEngine& e) { return multiColourise(e, keys, 1); });
    expectSameForAnyBands([&](ImageEngine& e) { return multiColourise(e, keys, 0.5f); });
    EXPECT_EQ(Picture::ramp().after([&](ImageEngine& e) { return multiColourise(e, keys, kNaN); }),
              Picture(256, 1));
}

}  // namespace krl::test
