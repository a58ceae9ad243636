#include <gtest/gtest.h>

#include <cmath>

#include "core/LookupTables.h"
#include "effects/generate/FlareScene.h"

namespace krl {
namespace {

using test::Picture;
using test::values;

constexpr int32_t kWidth = 61, kHeight = 51;
constexpr Point kMiddle{25, 30};

Picture bar(FlareKind kind, float angle, float length = 40, float thickness = 8) {
    return values(kWidth, kHeight,
                  {.kind = kind,
                   .origin = kMiddle,
                   .brightness = 255,
                   .angle = angle,
                   .length = length,
                   .thickness = thickness});
}
Picture line(float angle) { return bar(FlareKind::Line, angle); }
Picture caustic(float angle) { return bar(FlareKind::StarCaustic, angle); }

/// Extent of what was painted: columns, then rows.
struct Extent {
    int32_t columns = 0, rows = 0;
};
Extent extentOf(const Picture& picture) {
    int32_t left = picture.width(), right = -1, top = picture.height(), bottom = -1;
    for (int32_t y = 0; y < picture.height(); ++y)
        for (int32_t x = 0; x < picture.width(); ++x) {
            if (picture.at(x, y).red == 0) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    return right < 0 ? Extent{} : Extent{right - left + 1, bottom - top + 1};
}

TEST(Line, AtZeroIsUprightAndACausticLevel) {
    EXPECT_LT(extentOf(line(0)).columns, 9);
    EXPECT_GT(extentOf(line(0)).rows, 35);
    EXPECT_GT(extentOf(caustic(0)).columns, 30);
    EXPECT_LT(extentOf(caustic(0)).rows, 9);
}

TEST(Line, TurnsAQuarterAtTheKnownAngles) {
    for (float angle : {-90.0f, -270.0f}) {
        EXPECT_GT(extentOf(line(angle)).columns, 35) << angle;
        EXPECT_GT(extentOf(caustic(angle)).rows, 30) << angle;
    }
    EXPECT_GT(extentOf(caustic(90)).rows, 30);
    for (float angle : {-180.0f, -360.0f}) {
        EXPECT_EQ(line(angle), line(0)) << angle;
        EXPECT_EQ(caustic(angle), caustic(0)) << angle;
    }
}

TEST(Line, PaintsNothingAtOtherWholeQuarters) {
    for (float angle : {90.0f, 180.0f, 270.0f, 360.0f, 450.0f, -450.0f}) {
        EXPECT_EQ(line(angle), Picture(kWidth, kHeight)) << angle;
        if (angle != 90) {
            EXPECT_EQ(caustic(angle), Picture(kWidth, kHeight)) << angle;
        }
    }
}

TEST(Line, PaintsNothingWithoutLengthOrThickness) {
    for (float size : {0.0f, -3.0f, NAN}) {
        EXPECT_EQ(bar(FlareKind::Line, 30, size, 5), Picture(kWidth, kHeight));
        EXPECT_EQ(bar(FlareKind::StarCaustic, 0, 40, size), Picture(kWidth, kHeight));
    }
}

TEST(Line, IsADomeBothWays) {
    const Picture dome = line(0);  // thickness 8 across the columns, length 40 down the rows
    const auto level = [](double distance, double half) {
        return int32_t(255 * std::sin(90 * (half - distance) / half * 0.017453292519943295));
    };
    const LookupTables& tables = test::sharedTables();
    for (int32_t dx : {-4, -3, 0, 2})
        for (int32_t dy : {-20, -7, 0, 13})
            EXPECT_EQ(dome.at(30 + dx, 25 + dy).red,
                      tables.blendMultiply[level(std::abs(dx), 4)][level(std::abs(dy), 20)])
                << dx << ',' << dy;
    EXPECT_EQ(dome.at(30 + 5, 25).red, 0);
}

TEST(StarCaustic, IsATentAlongAndACuspAcross) {
    const Picture bright = caustic(0);
    const LookupTables& tables = test::sharedTables();
    const auto across = [](double distance) {
        return int32_t(255 * (1 + std::sin((90 * distance / 4 - 180) * 0.017453292519943295)));
    };
    EXPECT_EQ(bright.at(30 + 5, 25).red, tables.blendMultiply[int(255 * 15.0 / 20)][across(0)]);
    EXPECT_EQ(bright.at(30 - 10, 25 + 2).red, tables.blendMultiply[127][across(2)]);
    EXPECT_EQ(bright.at(30, 25 - 3).red, tables.blendMultiply[255][across(3)]);
    EXPECT_EQ(bright.at(30 - 20, 25).red, 0);
}

/// The distance test for one pixel, spelled out: feet of perpendiculars on both axes.
int32_t obliqueLine(int32_t x, int32_t y, float angle, double length, double thickness) {
    const auto distance = [&](float degrees, double half) {
        const double turn = static_cast<float>(double(degrees) * 0.01745329238474369f);
        const float m = float(((kMiddle.y + std::sin(turn) * half) - kMiddle.y) /
                              ((kMiddle.x + std::cos(turn) * half) - kMiddle.x));
        const float intercept = float(kMiddle.y - double(m) * kMiddle.x), p = float(-1.0 / m);
        const double k = y - std::trunc(x * double(p));
        const double footX = (k - intercept) / (double(m) - p), footY = footX * p + k;
        return std::pair((x - footX) * (x - footX) + (y - footY) * (y - footY), half);
    };
    const auto dome = [](std::pair<double, double> side) {
        const double half = side.second, d = std::sqrt(side.first);
        return std::clamp(int32_t(255 * std::sin(90 * (half - d) / half * 0.017453292519943295)), 0, 255);
    };
    const auto first = distance(angle + 90 > 360 ? angle + 90 - 360 : angle + 90, thickness / 2);
    const auto second = distance(angle, length / 2);
    if (first.first > first.second * first.second || second.first > second.second * second.second) return 0;
    return test::sharedTables().blendMultiply[dome(first)][dome(second)];
}

TEST(Line, SlantedIsWhatTheFeetOfPerpendicularsSay) {
    for (float angle : {17.0f, -33.0f, 45.0f, 80.5f, 134.0f, 200.0f, 290.0f, 350.0f, -1.0f, 0.001f}) {
        const Picture painted = line(angle);
        for (int32_t y = 0; y < kHeight; ++y)
            for (int32_t x = 0; x < kWidth; ++x)
                ASSERT_EQ(int(painted.at(x, y).red), obliqueLine(x, y, angle, 40, 8))
                    << angle << ": " << x << ',' << y;
    }
}

TEST(Line, ReachesFarBeyondThePicture) {
    const Picture long30 = bar(FlareKind::Line, -60, 1e6f, 8);
    EXPECT_GT(extentOf(long30).columns, 50);
    const FlareElement far{.kind = FlareKind::Line,
                           .origin = {-300, 5},
                           .brightness = 255,
                           .angle = 0,
                           .length = 900,
                           .thickness = 8};
    EXPECT_GT(values(kWidth, kHeight, far).at(5, 10).red, 0);
}

}  // namespace
}  // namespace krl
