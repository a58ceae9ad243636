#include <gtest/gtest.h>

#include <cmath>

#include "core/LookupTables.h"
#include "core/Random.h"
#include "effects/generate/FlareScene.h"
#include "reference/FlareReference.h"

namespace krl {
namespace {

using test::Picture;
using test::values;

constexpr int32_t kWidth = 80, kHeight = 60;
constexpr double kPi = 3.14159265358979323846;

Point tip(const FlareElement& rays, double degrees) {
    const double a = degrees / 180 * kPi;
    return {truncate(std::cos(a) * rays.radius + rays.origin.y),
            truncate(std::sin(a) * rays.radius + rays.origin.x)};
}

/// The rays one by one, as they are drawn from the generator.
std::vector<std::pair<Point, Point>> raysOf(const FlareElement& e) {
    std::vector<std::pair<Point, Point>> rays;
    Random random(e.seed);
    if (e.kind == FlareKind::Spike) {
        std::vector<double> angles;
        std::vector<float> tags;
        for (int32_t i = 0; i < e.count; ++i) {
            double a = random.next() % 3600 / 10.0 + e.angle;
            if (a >= 360) a -= 360;
            angles.push_back(a);
            tags.push_back(float(a));
        }
        for (size_t i = 0; i < tags.size(); ++i) {
            if (tags[i] == -1.0f) continue;
            for (size_t j = i + 1; j < tags.size(); ++j)
                if (tags[j] == tags[i]) {
                    tags[j] = -1.0f;
                    break;
                }
        }
        for (size_t i = 0; i < tags.size(); ++i)
            if (tags[i] != -1.0f) rays.push_back({e.origin, tip(e, angles[i])});
    } else if (e.kind == FlareKind::RandomFan) {
        const int32_t aperture = std::clamp(e.aperture, 1, 360);
        for (int32_t i = 0; i < e.count; ++i) {
            double a = random.next() % (aperture * 10) / 10.0 + (e.angle - aperture * 0.5);
            if (a >= 360) a -= 360;
            if (a < 0) a += 360;
            const double back = a + 180 >= 360 ? a + 180 - 360 : a + 180;
            rays.push_back({tip(e, a), tip(e, back)});
        }
    } else {
        for (int32_t w = 0; w < std::max(e.width, 1); ++w)
            for (int32_t k = 0; k < e.count; ++k) {
                const double a = k * (360.0 / e.count) + (double(w) + e.angle);
                rays.push_back({e.origin, tip(e, a >= 360 ? a - 360 : a)});
            }
    }
    return rays;
}

Picture expected(const FlareElement& e) {
    std::vector<uint8_t> mask(kWidth * kHeight, 0);
    for (const auto& [from, to] : raysOf(e))
        reference::gaussianLine(mask, kWidth, kHeight, from, to, truncate(e.brightness));
    Picture picture(kWidth, kHeight);
    const auto cut = [](double v, int32_t limit) { return truncate(std::clamp(v, 0.0, double(limit))); };
    for (int32_t y = cut(e.origin.y - double(e.radius), kHeight);
         y < cut(e.origin.y + double(e.radius), kHeight); ++y)
        for (int32_t x = cut(e.origin.x - double(e.radius), kWidth);
             x < cut(e.origin.x + double(e.radius), kWidth); ++x) {
            const float d = float(std::hypot(x - e.origin.x, y - e.origin.y));
            if (d > e.radius) continue;
            const uint8_t w = truncatedByte((double(e.radius) - d) * (255.0 / e.radius));
            const uint8_t v = test::sharedTables().blendMultiply[w][mask[size_t(y * kWidth + x)]];
            picture.at(x, y) = {v, v, v, 255};
        }
    return picture;
}

TEST(RayFamilies, AreTheirRaysOneByOne) {
    for (FlareKind kind : {FlareKind::Spike, FlareKind::RandomFan, FlareKind::Star})
        for (int32_t count : {1, 3, 40, 900})
            for (float angle : {0.0f, 33.25f, -50.0f, 350.0f}) {
                const FlareElement e{.kind = kind,
                                     .origin = {28, 37},
                                     .brightness = 70,
                                     .radius = 31.5f,
                                     .angle = angle,
                                     .count = count,
                                     .width = 3,
                                     .aperture = 77,
                                     .seed = 12};
                ASSERT_EQ(values(kWidth, kHeight, e), expected(e))
                    << int(kind) << ' ' << count << ' ' << angle;
                ASSERT_EQ(values(kWidth, kHeight, e, 3), expected(e))
                    << int(kind) << ' ' << count << ' ' << angle;
            }
}

TEST(Star, OfManyFaintArmsIsItsRaysOneByOne) {
    for (float radius : {9.5f, 31.5f, 900.0f})
        for (auto [count, width] : {std::pair{7000, 1}, {2500, 3}, {30000, 1}}) {
            const FlareElement star{.kind = FlareKind::Star,
                                    .origin = {28, 37},
                                    .brightness = 1,
                                    .radius = radius,
                                    .angle = 12.5f,
                                    .count = count,
                                    .width = width};
            ASSERT_EQ(values(kWidth, kHeight, star), expected(star)) << radius << ' ' << count;
        }
}

TEST(RayFamilies, DependOnTheSeedAlone) {
    FlareElement spike{
        .kind = FlareKind::Spike, .origin = {28, 37}, .brightness = 90, .radius = 25, .count = 20, .seed = 5};
    const Picture first = values(kWidth, kHeight, spike);
    EXPECT_EQ(values(kWidth, kHeight, spike), first);
    spike.seed = 6;
    EXPECT_FALSE(values(kWidth, kHeight, spike) == first);
}

TEST(RayFamilies, TakeCountAndRadiusBelowOneAsOne) {
    FlareElement star{
        .kind = FlareKind::Star, .origin = {28, 37}, .brightness = 90, .radius = 20, .count = 1, .width = 1};
    const Picture one = values(kWidth, kHeight, star);
    star.count = -7;
    star.width = 0;
    EXPECT_EQ(values(kWidth, kHeight, star), one);
    star.radius = 1;
    const Picture small = values(kWidth, kHeight, star);
    star.radius = -3;
    EXPECT_EQ(values(kWidth, kHeight, star), small);
}

TEST(RandomFan, LimitsItsApertureToATurn) {
    FlareElement fan{.kind = FlareKind::RandomFan,
                     .origin = {28, 37},
                     .brightness = 90,
                     .radius = 25,
                     .angle = 40,
                     .count = 20,
                     .aperture = 1,
                     .seed = 5};
    const Picture narrow = values(kWidth, kHeight, fan);
    fan.aperture = 0;
    EXPECT_EQ(values(kWidth, kHeight, fan), narrow);
    fan.aperture = 360;
    const Picture full = values(kWidth, kHeight, fan);
    fan.aperture = 400;
    EXPECT_EQ(values(kWidth, kHeight, fan), full);
}

TEST(Spike, AtMinusOneDegreeIsSkipped) {
    // The first draw of this seed is a multiple of 3600, so the only ray points at the angle itself.
    int32_t seed = 0;
    while (Random(seed).next() % 3600 != 0) ++seed;
    FlareElement spike{.kind = FlareKind::Spike,
                       .origin = {28, 37},
                       .brightness = 90,
                       .radius = 25,
                       .angle = -1,
                       .count = 1,
                       .seed = seed};
    EXPECT_EQ(values(kWidth, kHeight, spike), Picture(kWidth, kHeight));
    spike.angle = -2;
    EXPECT_FALSE(values(kWidth, kHeight, spike) == Picture(kWidth, kHeight));
}

TEST(Star, OfCountlessArmsIsAFullDisc) {
    const FlareElement star{.kind = FlareKind::Star,
                            .origin = {28, 37},
                            .brightness = 200,
                            .radius = 25,
                            .count = 2000000000,
                            .width = 2000000000};
    const Picture disc = values(kWidth, kHeight, star);
    for (int32_t dx = -20; dx <= 20; ++dx) {
        const float d = float(std::abs(dx));
        EXPECT_EQ(disc.at(37 + dx, 28).red, truncatedByte((25.0 - d) * (255.0 / 25))) << dx;
    }
}

}  // namespace
}  // namespace krl
