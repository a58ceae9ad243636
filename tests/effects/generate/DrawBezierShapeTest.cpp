#include <gtest/gtest.h>

#include "core/Random.h"
#include "effects/generate/BezierOutline.h"
#include "krlimage/generate.h"
#include "reference/FlareReference.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

std::vector<BezierSegment> closed(std::vector<BezierSegment> segments) {
    for (size_t i = 0; i < segments.size(); ++i) segments[i].end = segments[(i + 1) % segments.size()].vertex;
    return segments;
}

Picture drawn(const Picture& picture, const std::vector<BezierSegment>& segments) {
    return picture.after([&](ImageEngine& engine) { return drawBezierShape(engine, segments); });
}

Picture drawnSlowly(const Picture& picture, const std::vector<BezierSegment>& segments) {
    return picture.after([&](ImageEngine& engine) {
        reference::drawBezierShape(*engine.buffer(), segments);
        return kStatusOk;
    });
}

/// A square with straight sides around a place in the picture.
std::vector<BezierSegment> square(const Picture& picture, int32_t x, int32_t y, int32_t half) {
    const Point middle{picture.height() - y - 200, x - 200};
    const auto corner = [&](int32_t dy, int32_t dx) {
        return BezierSegment{{middle.y + dy * half, middle.x + dx * half}, {}, {}, {}};
    };
    return closed({corner(-1, -1), corner(-1, 1), corner(1, 1), corner(1, -1)});
}

TEST(BezierShape, WithoutAnImageIsWell) {
    ImageEngine engine;
    EXPECT_EQ(drawBezierShape(engine, square(Picture(9, 9), 4, 4, 2)), kStatusOk);
    engine.load(nullptr, {9, 9, 36, 0, 0, 0});
    EXPECT_EQ(drawBezierShape(engine, {}), kStatusOk);
}

TEST(BezierShape, OfNothingIsBlackAndKeepsAlpha) {
    const Picture before = Picture::random(13, 7);
    const Picture after = drawn(before, {});
    for (const Pixel& p : after.pixels()) EXPECT_EQ(p.blue + p.green + p.red, 0);
    EXPECT_TRUE(test::sameAlpha(before, after));
}

TEST(BezierShape, CountsFrom200InAnd200Up) {
    const Picture picture(260, 240);
    const Picture dot = drawn(picture, {{}});
    EXPECT_EQ(dot.at(200, 40).green, 255);
    EXPECT_EQ(dot.at(203, 40).green, 0);
    EXPECT_EQ(dot.at(200, 43).green, 0);
}

TEST(BezierShape, HasAnOutlineInAllColoursAndItsInsideInBlue) {
    const Picture picture(60, 50);
    const Picture shape = drawn(picture, square(picture, 30, 25, 15));
    EXPECT_EQ(shape.at(30, 25), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(shape.at(15, 25).green, 255);  // on the outline
    EXPECT_EQ(shape.at(15, 25).blue, 255);
    EXPECT_EQ(shape.at(14, 25).green, 255);
    EXPECT_GT(shape.at(16, 25).green, 0);  // its soft inner edge, over the filling
    EXPECT_LT(shape.at(16, 25).green, 255);
    EXPECT_EQ(shape.at(16, 25).blue, 255);
    EXPECT_EQ(shape.at(12, 25), (Pixel{0, 0, 0, 255}));
}

TEST(BezierShape, EndsOnCoincidentPoints) {
    const std::vector<Point> points = flattenOutline(std::vector<BezierSegment>{{}}, 240, 4);
    EXPECT_EQ(points.size(), 3u);  // start, middle and end
    for (Point p : points) {
        EXPECT_EQ(p.x, 800);
        EXPECT_EQ(p.y, 160);
    }
}

TEST(BezierShape, BulgesTowardItsHandles) {
    const Picture picture(300, 300);
    // Both handles 80 rows up from a level base line: the middle of the curve is 60 up.
    const Picture shape =
        drawn(picture, closed({{{0, -100}, {80, 0}, {0, 100}, {}}, {{0, 0}, {0, 0}, {0, 0}, {}}}));
    EXPECT_GT(shape.at(150, 100 - 59).green, 100);
    EXPECT_EQ(shape.at(150, 100 - 30).blue, 255);
    EXPECT_EQ(shape.at(150, 100 - 30).green, 0);
    EXPECT_EQ(shape.at(150, 100 - 65).blue, 0);
}

TEST(BezierShape, IsTheSlowMatte) {
    Random random(9);
    for (int round = 0; round < 60; ++round) {
        const Picture picture = Picture::random(random.next() % 70 + 1, random.next() % 90 + 1, round);
        const auto draw = [&](int32_t span) { return random.next() % (2 * span) - span; };
        std::vector<BezierSegment> segments;
        for (int32_t i = random.next() % 6; i >= 0; --i) {
            const Point vertex{picture.height() / 2 - 200 + draw(70), picture.width() / 2 - 200 + draw(60)};
            segments.push_back({vertex, {draw(50), draw(50)}, {draw(50), draw(50)}, {}});
        }
        ASSERT_EQ(drawn(picture, closed(segments)), drawnSlowly(picture, closed(segments))) << round;
    }
}

TEST(BezierShape, SurvivesAnyNumbers) {
    Random random(2);
    const auto draw = [&] { return int32_t(uint32_t(random.next()) << 17 ^ uint32_t(random.next())); };
    for (int round = 0; round < 60; ++round) {
        std::vector<BezierSegment> segments;
        for (int i = 0; i < 5; ++i)
            segments.push_back({{draw(), draw()}, {draw(), draw()}, {draw(), draw()}, {}});
        const Picture picture(40, 30);
        EXPECT_TRUE(test::sameAlpha(drawn(picture, closed(segments)), picture));
    }
}

TEST(BezierShape, RefusesAPictureTooLargeForItsGrid) {
    ImageEngine engine;
    uint8_t pixel[4] = {};
    engine.load(pixel, {1 << 14, 1 << 14, 1 << 16, 0, 0, 0});
    EXPECT_EQ(drawBezierShape(engine, {}), kStatusRefused);
}

}  // namespace
}  // namespace krl
