#include <gtest/gtest.h>

#include <cmath>

#include "effects/generate/FlareScene.h"
#include "reference/FlareReference.h"

namespace krl {
namespace {

using test::flared;
using test::Picture;
using test::values;

constexpr Point kMiddle{20, 24};

/// Adds to `counts` what a ring paints within the circle's clip box.
void countRing(Picture& counts, Point origin, int32_t reach, int32_t inner, int32_t outer, uint8_t value) {
    reference::walkRing(inner, outer, [&](int32_t dx, int32_t dy) {
        const int32_t x = origin.x + dx, y = origin.y + dy;
        if (x < 0 || y < 0 || x >= counts.width() || y >= counts.height()) return;
        if (dx >= reach || dy >= reach) return;  // exclusive high edges
        counts.at(x, y) = {value, value, value, 255};
    });
}

TEST(FilledCircle, IsTheMidpointCircleAtEveryRadius) {
    for (int32_t radius = 1; radius < 40; ++radius) {
        Picture expected(48, 40);
        countRing(expected, kMiddle, radius, 0, radius, 90);
        const FlareElement disc{.origin = kMiddle, .brightness = 90.7f, .radius = float(radius) + 0.6f};
        EXPECT_EQ(values(48, 40, disc), expected) << radius;
    }
}

TEST(FilledCircle, LosesItsHighEdgesToTheClipBox) {
    const Picture disc = values(48, 40, {.origin = kMiddle, .radius = 5});
    EXPECT_EQ(disc.at(24 - 5, 20).red, 255);
    EXPECT_EQ(disc.at(24 + 5, 20).red, 0);
    EXPECT_EQ(disc.at(24, 20 - 5).red, 255);
    EXPECT_EQ(disc.at(24, 20 + 5).red, 0);
    EXPECT_EQ(values(48, 40, {.origin = kMiddle, .radius = 0}), Picture(48, 40));
}

TEST(FilledCircle, FallsThroughItsFeather) {
    const FlareElement circle{.origin = kMiddle, .brightness = 200, .radius = 6, .outerFeather = 10};
    const Picture disc = values(48, 40, circle);
    EXPECT_EQ(disc.at(24 - 6, 20).red, 200);
    EXPECT_EQ(disc.at(24 - 7, 20).red, 180);  // (16 - 7) * 20
    EXPECT_EQ(disc.at(24 - 11, 20).red, 100);
    EXPECT_EQ(disc.at(24 - 16, 20).red, 0);
}

TEST(FilledCircle, PaintsEachPixelOnce) {
    // Half-covering white doubles where a pixel is painted twice.
    for (float radius : {0.0f, 0.5f, 1.0f, 2.0f, 7.0f, 12.3f}) {
        const FlareElement circle{.origin = kMiddle, .brightness = 100, .radius = radius, .outerFeather = 8};
        const Picture painted = values(48, 40, circle);
        for (const Pixel& p : painted.pixels()) EXPECT_LE(p.red, 115) << radius;
    }
}

TEST(GradientCircle, IsAConeFromTheCentre) {
    const Picture cone = values(
        48, 40, {.kind = FlareKind::GradientCircle, .origin = kMiddle, .brightness = 200, .radius = 10});
    EXPECT_EQ(cone.at(24, 20).red, 200);
    EXPECT_EQ(cone.at(24 - 4, 20).red, 120);
    EXPECT_EQ(cone.at(24 + 3, 20 + 4).red, 100);
    EXPECT_EQ(cone.at(24 - 10, 20).red, 0);
}

TEST(GradientCircle, OfLessThanAPixelIsItsTip) {
    for (auto [radius, level] : {std::pair{0.0f, uint8_t{255}}, {0.5f, uint8_t{80}}, {-0.5f, uint8_t{80}}}) {
        Picture expected(48, 40);
        expected.at(24, 20) = {level, level, level, 255};
        EXPECT_EQ(
            values(
                48, 40,
                {.kind = FlareKind::GradientCircle, .origin = kMiddle, .brightness = 80, .radius = radius}),
            expected)
            << radius;
    }
    const FlareElement outside{.kind = FlareKind::GradientCircle, .origin = {-1, 50}, .radius = 0};
    EXPECT_EQ(values(48, 40, outside), Picture(48, 40));
}

TEST(OutlinedCircle, ClimbsStaysFlatAndFalls) {
    const FlareElement circle{.kind = FlareKind::OutlinedCircle,
                              .origin = kMiddle,
                              .brightness = 200,
                              .radius = 12,
                              .outerFeather = 4,
                              .innerFeather = 5,
                              .outerThickness = 2,
                              .innerThickness = 3};
    const Picture ring = values(48, 40, circle);
    const auto at = [&](int32_t distance) { return int(ring.at(24 - distance, 20).red); };
    EXPECT_EQ(at(4), 0);
    EXPECT_EQ(at(5), 40);  // 200 - (9 - 5) * 40
    EXPECT_EQ(at(8), 160);
    EXPECT_EQ(at(9), 200);
    EXPECT_EQ(at(12), 200);
    EXPECT_EQ(at(14), 200);
    EXPECT_EQ(at(15), 150);  // (18 - 15) * 50
    EXPECT_EQ(at(18), 0);
}

TEST(OutlinedCircle, IsMadeOfMidpointRings) {
    const FlareElement circle{.kind = FlareKind::OutlinedCircle,
                              .origin = kMiddle,
                              .brightness = 150,
                              .radius = 12,
                              .outerThickness = 3,
                              .innerThickness = 4};
    Picture expected(48, 40);
    countRing(expected, kMiddle, 15, 8, 15, 150);
    EXPECT_EQ(values(48, 40, circle), expected);
}

TEST(Circles, FarLargerThanThePictureAreWhatPassesThroughIt) {
    // The edge of a disc of a million pixels is as good as straight.
    const FlareElement disc{.origin = {20, 1000010}, .brightness = 120, .radius = 1000000};
    const Picture painted = values(48, 40, disc);
    EXPECT_EQ(painted.at(9, 20).red, 0);
    EXPECT_EQ(painted.at(10, 20).red, 120);
    EXPECT_EQ(painted.at(11, 0).red, 120);
    const Picture inside =
        values(48, 40, {.origin = {-900000000, 900000000}, .brightness = 90, .radius = 2e9f});
    EXPECT_EQ(inside.at(0, 0).red, 90);
    EXPECT_EQ(inside.at(47, 39).red, 90);
}

TEST(FadedCircle, IsBrightestTowardTheCentreOfThePicture) {
    const FlareElement circle{.kind = FlareKind::FadedCircle,
                              .origin = {50, 50},
                              .brightness = 60,
                              .radius = 20,
                              .outerThickness = 3,
                              .innerThickness = 3};
    const Picture ring = values(100, 100, circle);
    // 20 from the centre of a picture with a half side of 50: 60 ln(10 (1 - 0.4))
    EXPECT_EQ(ring.at(30, 50).red, int(60 * std::log(6.0)));
    EXPECT_EQ(ring.at(50, 50).red, 0);
    const FlareElement corner{.kind = FlareKind::FadedCircle,
                              .origin = {2, 2},
                              .brightness = 255,
                              .radius = 6,
                              .outerThickness = 3,
                              .innerThickness = 3};
    EXPECT_EQ(values(100, 100, corner), Picture(100, 100));
}

TEST(FadedCircle, HasTheProfileOfTheOutlinedOne) {
    const FlareElement circle{.kind = FlareKind::FadedCircle,
                              .origin = {50, 50},
                              .brightness = 50,
                              .radius = 20,
                              .outerFeather = 10,
                              .innerFeather = 8,
                              .outerThickness = 4,
                              .innerThickness = 2};
    const Picture ring = values(100, 100, circle);
    const auto fade = [](double q) { return std::log((1 - q / 50) * 10); };
    EXPECT_EQ(ring.at(50, 50 - 34).red, 0);
    EXPECT_EQ(ring.at(50, 50 - 29).red, int((34 - 29) * 5.0 * fade(29)));
    EXPECT_EQ(ring.at(50, 50 - 24).red, int(50 * fade(24)));
    EXPECT_EQ(ring.at(50, 50 - 18).red, int(50 * fade(18)));
    EXPECT_EQ(ring.at(50, 50 - 14).red, int((50 - 4 * 6.25) * fade(14)));
    EXPECT_EQ(ring.at(50, 50 - 10).red, 0);
}

}  // namespace
}  // namespace krl
