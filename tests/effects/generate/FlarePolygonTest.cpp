#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "effects/generate/FlareScene.h"
#include "effects/generate/ScanConversion.h"

namespace krl {
namespace {

using test::Picture;
using test::values;

struct Span {
    int32_t y, left, right;
    bool operator==(const Span&) const = default;
};

std::vector<Span> spansOf(std::vector<PolygonCorner> corners, GridBox clip = {0, 0, 20, 20}) {
    std::vector<Span> spans;
    scanPolygon(corners, clip, [&](int32_t y, int32_t left, int32_t right) {
        spans.push_back({y, left, right});
    });
    return spans;
}

TEST(ScanConversion, FillsMiddlesButTheLastOfEachRun) {
    // Rows 2 and 3 have their middles inside; columns 2 to 5 do, and 5 is left out.
    EXPECT_EQ(spansOf({{2, 2}, {6, 2}, {6, 4}, {2, 4}}), (std::vector<Span>{{2, 2, 5}, {3, 2, 5}}));
}

TEST(ScanConversion, FillsConcaveShapesInPairs) {
    // A W: two teeth side by side, one below the notch.
    const auto spans = spansOf({{1, 1}, {9, 9}, {17, 1}, {17, 17}, {1, 17}});
    const auto runsAt = [&](int32_t y) {
        return std::count_if(spans.begin(), spans.end(), [y](const Span& span) { return span.y == y; });
    };
    EXPECT_EQ(runsAt(4), 2);
    EXPECT_EQ(runsAt(12), 1);
    EXPECT_NE(std::find(spans.begin(), spans.end(), Span{12, 1, 16}), spans.end());
}

TEST(ScanConversion, IsCutToTheClip) {
    EXPECT_EQ(spansOf({{-50, -50}, {90, -50}, {90, 90}, {-50, 90}}, {3, 5, 8, 7}),
              (std::vector<Span>{{5, 3, 7}, {6, 3, 7}}));
    EXPECT_TRUE(spansOf({{30, 1}, {40, 1}, {40, 9}}).empty());
    EXPECT_TRUE(spansOf({{1, 30}, {9, 30}, {4, 44}}).empty());
    EXPECT_TRUE(spansOf({}).empty());
}

TEST(ScanConversion, HasNothingForALine) {
    EXPECT_TRUE(spansOf({{3, 3}}).empty());
    EXPECT_TRUE(spansOf({{3, 3}, {12, 15}}).empty());
}

FlareElement polygon(int32_t count, float radius) {
    return {.kind = FlareKind::Polyshape,
            .origin = {20, 25},
            .brightness = 200,
            .radius = radius,
            .angle = 45,
            .count = count};
}

TEST(Polyshape, IsAFlatShapeOfItsBrightness) {
    // A square with sides of 14: corners at 25 -+ 7 and 20 -+ 7 (to within rounding).
    const Picture square = values(50, 40, polygon(4, float(7.02 * std::sqrt(2.0))));
    EXPECT_EQ(square.at(25, 20), (Pixel{200, 200, 200, 255}));
    EXPECT_EQ(square.at(18, 13).red, 200);
    EXPECT_EQ(square.at(17, 20).red, 0);
    EXPECT_EQ(square.at(30, 20).red, 200);
    EXPECT_EQ(square.at(31, 20).red, 0);  // inside, and left out by the run
    EXPECT_EQ(square.at(25, 26).red, 200);
    EXPECT_EQ(square.at(25, 27).red, 0);
}

TEST(Polyshape, WithoutAreaPaintsNothing) {
    for (int32_t count : {-3, 0, 1, 2})
        for (int32_t expand : {0, 9}) {
            FlareElement element = polygon(count, 15);
            element.expandShape = expand;
            EXPECT_EQ(values(50, 40, element), Picture(50, 40)) << count;
        }
}

TEST(Polyshape, GrowsByExpandAndSoftensByBlur) {
    const auto lit = [](const Picture& picture) {
        return std::count_if(picture.pixels().begin(), picture.pixels().end(),
                             [](Pixel p) { return p.red > 0; });
    };
    const auto levels = [](const Picture& picture) {
        std::set<int> found;
        for (Pixel p : picture.pixels()) found.insert(p.red);
        return found;
    };
    FlareElement element = polygon(6, 10);
    const Picture plain = values(50, 40, element);
    EXPECT_EQ(levels(plain), (std::set<int>{0, 200}));
    element.expandShape = 4;
    const Picture grown = values(50, 40, element);
    EXPECT_EQ(levels(grown), (std::set<int>{0, 200}));
    EXPECT_GT(lit(grown), lit(plain));
    element.shapeBlur = 3;
    EXPECT_GT(levels(values(50, 40, element)).size(), 10u);
}

TEST(Polyshape, KeepsBrightnessInAByte) {
    FlareElement element = polygon(5, 12);
    element.brightness = 300;
    EXPECT_EQ(values(50, 40, element).at(25, 20).red, 300 - 256);
}

}  // namespace
}  // namespace krl
