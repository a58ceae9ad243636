#include <gtest/gtest.h>

#include <cmath>

#include "core/Random.h"
#include "effects/generate/FlareScene.h"
#include "effects/generate/HoopField.h"
#include "reference/FlareReference.h"

namespace krl {
namespace {

using test::flared;
using test::Picture;

const std::vector<CurveKey> kRainbow{{255, 0, 0, 0}, {0, 255, 0, 120}, {0, 0, 255, 255}};

FlareElement hoop() {
    return {.kind = FlareKind::ChromaHoop,
            .origin = {40, 60},
            .handle = {40, 20},
            .seed = 3,
            .position = 0.6f,
            .softness = 0.5f,
            .density = 0.02f,
            .arcCompleteness = 1};
}

TEST(HoopField, IsTheFineGridCellByCell) {
    Random random(4);
    constexpr int32_t width = 23, height = 17;
    for (int round = 0; round < 40; ++round) {
        const auto draw = [&](int32_t limit) { return random.next() % (limit + 20) - 10; };
        reference::HoopCells cells(width, height);
        HoopField whole({0, 0, width, height}), part({5, 3, 15, 12});
        for (int ray = 0; ray < 12; ++ray) {
            const Point inner{draw(height), draw(width)},
                outer = ray == 7 ? inner : Point{draw(height), draw(width)};
            cells.draw(inner, outer);
            whole.draw(inner, outer);
            part.draw(inner, outer);
        }
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                ASSERT_EQ(whole.fractionAt(x, y), cells.fractions[size_t(y * width + x)]) << x << ',' << y;
                if (x >= 5 && x < 15 && y >= 3 && y < 12) {
                    ASSERT_EQ(part.fractionAt(x, y), whole.fractionAt(x, y));
                }
            }
    }
}

TEST(HoopField, RunsFromTheOuterEndToTheInner) {
    HoopField field({0, 0, 40, 40});
    field.draw({20, 5}, {20, 30});
    EXPECT_NEAR(field.fractionAt(29, 20), 0.0f, 0.06f);
    EXPECT_NEAR(field.fractionAt(5, 20), 1.0f, 0.06f);
    EXPECT_NEAR(field.fractionAt(17, 20), 0.5f, 0.06f);
    EXPECT_EQ(field.fractionAt(17, 30), HoopField::kUntouched);
}

TEST(ChromaHoop, LiesBetweenItsTwoCircles) {
    FlareElement element = hoop();
    element.blend = BlendMode::Screen;
    const Picture painted = flared(Picture(90, 80), element, {{255, 0, 0, 0}, {0, 0, 255, 255}});
    // C is 24 right of the handle, Q 12: circles around (44, 40) and (32, 40) that meet in the handle.
    EXPECT_GT(painted.at(44 + 23, 40).red, 200);
    EXPECT_GT(painted.at(32 + 12, 40).blue, 200);
    EXPECT_EQ(painted.at(32, 40), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(painted.at(44 + 26, 40), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(painted.at(44 - 22, 20), (Pixel{0, 0, 0, 255}));  // a corner of the box
}

TEST(ChromaHoop, FillsItsBoxUnderTheNormalBlend) {
    const Picture grey(90, 80, {100, 100, 100, 255});
    const Picture rainbow = flared(grey, hoop(), kRainbow);
    EXPECT_EQ(rainbow.at(44 - 24, 40 - 24), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(rainbow.at(44 + 24, 40), (Pixel{100, 100, 100, 255}));  // the high edge is exclusive
    EXPECT_EQ(flared(grey, hoop(), {{9, 8, 7, 0}}).at(44, 40), (Pixel{7, 8, 9, 255}));
    EXPECT_EQ(flared(grey, hoop()).at(44, 40), (Pixel{255, 255, 255, 255}));
}

TEST(ChromaHoop, HasOneOpacityEverywhere) {
    FlareElement element = hoop();
    element.transparency = 155;
    EXPECT_EQ(flared(Picture(90, 80), element).at(44, 40), (Pixel{100, 100, 100, 255}));
    element.transparency = 255;
    EXPECT_EQ(flared(Picture(90, 80), element), Picture(90, 80));
    element.transparency = -50;
    EXPECT_EQ(flared(Picture(90, 80), element).at(44, 40), (Pixel{255, 255, 255, 255}));
}

TEST(ChromaHoop, PaintsNothingWithoutAStep) {
    for (auto [density, arc] :
         {std::pair{0.0f, 1.0f}, {0.1f, 0.0f}, {1e-9f, 1.0f}, {-0.1f, 1.0f}, {NAN, 1.0f}}) {
        FlareElement element = hoop();
        element.density = density;
        element.arcCompleteness = arc;
        EXPECT_EQ(flared(Picture(90, 80), element, kRainbow), Picture(90, 80)) << density << ' ' << arc;
    }
}

TEST(ChromaHoop, TakesTinyNoiseAsNone) {
    FlareElement element = hoop();
    const Picture still = flared(Picture(90, 80), element, kRainbow);
    element.noise = 0.0005f;
    EXPECT_EQ(flared(Picture(90, 80), element, kRainbow), still);
    element.noise = 0.9f;
    const Picture jittered = flared(Picture(90, 80), element, kRainbow);
    EXPECT_FALSE(jittered == still);
    EXPECT_EQ(flared(Picture(90, 80), element, kRainbow), jittered);
}

TEST(ChromaHoop, HalfAnArcIsCentredOnTheWayDown) {
    FlareElement element = hoop();
    element.arcCompleteness = 0.5f;
    element.blend = BlendMode::Screen;
    const Picture painted = flared(Picture(90, 80), element, kRainbow);
    const auto lit = [&](int32_t x, int32_t y) { return painted.at(x, y) != Pixel{0, 0, 0, 255}; };
    EXPECT_TRUE(lit(40, 40 + 20));
    EXPECT_FALSE(lit(40, 40 - 20));
}

TEST(ChromaHoop, IgnoresAngleApogeeAndSpread) {
    FlareElement element = hoop();
    const Picture plain = flared(Picture(90, 80), element, kRainbow);
    element.angle = 70;
    element.apogeeScale = 3;
    element.chromaSpread = 9;
    element.brightness = 1;
    EXPECT_EQ(flared(Picture(90, 80), element, kRainbow), plain);
}

}  // namespace
}  // namespace krl
