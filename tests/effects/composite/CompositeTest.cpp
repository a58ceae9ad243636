#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "krlimage/composite.h"
#include "reference/CompositeReference.h"

namespace krl::test {
namespace {

constexpr AlphaRule kShift = AlphaRule::BackgroundAlphaNo;
constexpr AlphaRule kStraight = AlphaRule::BackgroundAlphaYes;

/// One pixel over another.
Pixel over(Pixel behind, Pixel front, BlendMode mode, AlphaRule rule) {
    const Picture top(1, 1, front);
    return Picture(1, 1, behind)
        .after([&](ImageEngine& e) { return composite(e, top.asSecondImage(), mode, rule); })
        .at(0, 0);
}

std::function<Status(ImageEngine&)> laying(const Picture& front, BlendMode mode, AlphaRule rule) {
    return [&front, mode, rule](ImageEngine& e) { return composite(e, front.asSecondImage(), mode, rule); };
}

/// The modes by plain arithmetic, told without a table.
int blendFormula(BlendMode mode, int f, int b) {
    const double fu = f / 255.0, gu = (255 - f) / 255.0;
    const double m = ((b * fu) / 255) * 255;
    const double h = 255 - ((((255 - b) * gu) / 255) * 255 * 2);
    const auto byte = [](double v) { return int(std::clamp(v, 0.0, 255.0)); };
    switch (mode) {
        case BlendMode::Add:
            return std::min(f + b, 255);
        case BlendMode::Darken:
            return std::min(f, b);
        case BlendMode::Multiply:
            return byte(m);
        case BlendMode::Screen:
            return byte(255 - ((((255 - b) * gu) / 255) * 255));
        case BlendMode::Lighten:
            return std::max(f, b);
        case BlendMode::HardLight:
            return byte(f < 128 ? 2 * m : h);
        case BlendMode::Difference:
            return std::abs(f - b);
        case BlendMode::PinLight:
            return f < 128 ? std::min(f, b) : std::max(f, b);
        case BlendMode::Overlay:
            return byte(b < 128 ? 2 * m : h);
        case BlendMode::Exclusion:
            return f + b - 2 * f * b / 255;
        case BlendMode::SoftLight: {
            const double p = (f * b) / 255.0, q = ((255 - f) * (255 - b)) / 255.0, s = 255 - q;
            return byte(p + (((s - p) * b) / 255));
        }
        case BlendMode::ColorBurn:
            return f == 0 ? 0 : std::clamp(255 + ((b - 255) * 255) / f, 0, 255);
        case BlendMode::ColorDodge:
            return f == 255 ? 255 : std::min((b * 255) / (255 - f), 255);
        default:
            return f;
    }
}

/// Every foreground level against every background level, one pixel each.
Picture levelsDown(uint8_t alpha) {
    Picture picture(256, 256);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) picture.at(x, y) = {uint8_t(y), uint8_t(y), uint8_t(y), alpha};
    return picture;
}

TEST(BlendMode, EveryModeOverAGradientFollowsItsFormula) {
    const Picture behind = Picture::ramp(256);
    for (const auto& [symbol, mode] : kCompositeBlends) {
        const Picture front = levelsDown(128);
        const Picture result = behind.after(laying(front, mode, kShift), 2);
        for (int f = 0; f < 256; ++f)
            for (int b = 0; b < 256; ++b) {
                const int t = blendFormula(mode, f, b);
                const int expected = mode == BlendMode::NoBlend ? f : b + (((t - b) * 128) >> 8);
                const auto level = uint8_t(expected);
                ASSERT_EQ(result.at(b, f), (Pixel{level, level, level, 255}))
                    << symbol << ' ' << f << ' ' << b;
            }
    }
}

TEST(BlendMode, TablesHoldTheFormulas) {
    for (int32_t mode = 0; mode < 18; ++mode) {
        const ByteSquare<uint8_t>* table = blendTable(sharedTables(), BlendMode(mode));
        EXPECT_EQ(table != nullptr, mode >= 2 && mode <= 14);
        for (int f = 0; table && f < 256; ++f)
            for (int b = 0; b < 256; ++b)
                ASSERT_EQ((*table)[f][b], blendFormula(BlendMode(mode), f, b))
                    << mode << ' ' << f << ' ' << b;
    }
}

TEST(BlendMode, DepartsFromTheUsualFormulasWhereItShould) {
    const LookupTables& t = sharedTables();
    EXPECT_EQ(t.blendPin[100][60], 60);  // no doubling
    EXPECT_EQ(t.blendColorDodge[255][0], 255);
    EXPECT_EQ(t.blendColorBurn[0][255], 0);
    EXPECT_EQ(t.blendMultiply[147][85], 48);  // 49 exactly, by way of a product that falls just short
    EXPECT_EQ(blendChannel(60, 100, BlendMode::PinLight, 256, t), 100);  // the shift form takes it as normal
}

TEST(Composite, NormalByShiftFallsShortUpwardsAndReachesDownwards) {
    const auto grey = [](int level, int alpha) {
        return Pixel{uint8_t(level), uint8_t(level), uint8_t(level), uint8_t(alpha)};
    };
    EXPECT_EQ(over(grey(0, 7), grey(255, 255), BlendMode::Normal, kShift), grey(254, 7));
    EXPECT_EQ(over(grey(255, 7), grey(0, 255), BlendMode::Normal, kShift), grey(0, 7));
    EXPECT_EQ(over({1, 2, 3, 4}, grey(255, 0), BlendMode::Normal, kShift), (Pixel{1, 2, 3, 4}));
}

TEST(Composite, NoBlendCopiesColourByShiftAndActsAsNormalInStraightAlpha) {
    EXPECT_EQ(over({1, 2, 3, 4}, {9, 8, 7, 0}, BlendMode::NoBlend, kShift), (Pixel{9, 8, 7, 4}));
    EXPECT_EQ(over({1, 2, 3, 0}, {9, 8, 7, 0}, BlendMode::NoBlend, kStraight), (Pixel{1, 2, 3, 0}));
    const Picture behind = Picture::random(31, 9, 4), front = Picture::random(31, 9, 5);
    EXPECT_EQ(behind.after(laying(front, BlendMode::NoBlend, kStraight)),
              behind.after(laying(front, BlendMode::Normal, kStraight)));
}

TEST(Composite, HalfAlphaOverNothingKeepsTheForegroundsColour) {
    EXPECT_EQ(over({9, 9, 9, 0}, {10, 100, 200, 128}, BlendMode::Normal, kStraight),
              (Pixel{10, 100, 200, 128}));
}

TEST(Composite, AddIsUnevenInStraightAlphaAlone) {
    const Pixel behind{100, 100, 100, 255}, front{100, 100, 100, 255};
    EXPECT_EQ(over(behind, front, BlendMode::Add, kStraight), (Pixel{200, 160, 160, 255}));
    EXPECT_EQ(over(behind, front, BlendMode::Add, kShift), (Pixel{199, 199, 199, 255}));
}

TEST(Composite, RunsEqualThePixelsInEveryModeAndRule) {
    Picture behind = Picture::random(149, 13, 1), front = Picture::random(149, 13, 2);
    for (size_t i = 0; i < behind.pixels().size(); ++i) {  // stretches that are opaque, clear, or neither
        if (i / 50 % 4 == 0) behind.pixels()[i].alpha = 255;
        if (i / 70 % 5 == 0) front.pixels()[i].alpha = 255;
        if (i / 30 % 6 == 0) front.pixels()[i].alpha = 0;
        if (i / 90 % 7 == 0) behind.pixels()[i].alpha = 0;
    }
    for (int32_t mode = 0; mode < 18; ++mode)
        for (AlphaRule rule : {kShift, kStraight})
            EXPECT_EQ(behind.after(laying(front, BlendMode(mode), rule)),
                      composited(behind, front, BlendMode(mode), rule))
                << mode;
}

TEST(Composite, RunsEqualThePixelsForEveryPairOfColours) {
    Picture behind = Picture::ramp(256), front = Picture::ramp(256);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            const auto f = uint8_t(x), b = uint8_t(y);
            behind.at(x, y) = {b, uint8_t(255 - b), b, 255};
            front.at(x, y) = {f, f, uint8_t(255 - f), 255};
        }
    for (int32_t mode = 0; mode < 18; ++mode)
        for (AlphaRule rule : {kShift, kStraight})
            EXPECT_EQ(behind.after(laying(front, BlendMode(mode), rule)),
                      composited(behind, front, BlendMode(mode), rule))
                << mode;
}

TEST(Composite, StraightAlphaOfOpaquePixelsIsOneExactDivision) {
    const double reciprocal = sharedTables().reciprocal[255];
    for (int32_t n = 0; n <= 255 * 255; ++n) ASSERT_EQ(truncate(n * reciprocal), n / 255);
}

TEST(Composite, StraightAlphaOverEveryPairOfAlphas) {
    Picture behind = levelsDown(0), front = Picture::ramp(256);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            behind.at(x, y) = {uint8_t(x * 7), 255, uint8_t(y), uint8_t(y)};
            front.at(x, y) = {uint8_t(y * 5), 0, uint8_t(255 - y), uint8_t(x)};
        }
    for (BlendMode mode : {BlendMode::Normal, BlendMode::Add, BlendMode::Overlay, BlendMode::Darken})
        EXPECT_EQ(behind.after(laying(front, mode, kStraight)), composited(behind, front, mode, kStraight));
}

TEST(Composite, RefusesAForegroundOfAnotherSize) {
    Picture picture = Picture::random(5, 4);
    const Picture before = picture;
    EXPECT_EQ(picture.apply(laying(Picture(4, 5), BlendMode::Normal, kShift)), kStatusForegroundSize);
    EXPECT_EQ(picture.apply([](ImageEngine& e) {
        return composite(e, {nullptr, {5, 4, 20, 0, 0, 0}}, BlendMode::Normal, kShift);
    }),
              kStatusNoPixels);
    EXPECT_EQ(picture, before);
}

TEST(Composite, IsTheSameInAnyNumberOfBands) {
    for (AlphaRule rule : {kShift, kStraight})
        expectSameForAnyBands([rule](ImageEngine& e) {
            const Picture front = Picture::random(e.buffer()->width, e.buffer()->height, 99);
            return composite(e, front.asSecondImage(), BlendMode::SoftLight, rule);
        });
    expectStateTests([](ImageEngine& e) {
        const Picture front(2, 2);
        return composite(e, front.asSecondImage(), BlendMode::Normal, kShift);
    });
}

}  // namespace
}  // namespace krl::test
