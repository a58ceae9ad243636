#include <gtest/gtest.h>

#include <climits>

#include "core/Faults.h"
#include "krlimage/blur.h"
#include "reference/PathBlurReference.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

constexpr ChannelTarget kTargets[] = {ChannelTarget::RGBA, ChannelTarget::RGB, ChannelTarget::Alpha};
constexpr ChannelTarget kNoTarget{};
constexpr int32_t kShapes[][2] = {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {17, 11}, {31, 23}, {270, 3}};

auto streak(int32_t distance, int32_t angle, BlurCount blurCount, ChannelTarget target) {
    return [=](ImageEngine& engine) { return motionBlur(engine, distance, angle, blurCount, target); };
}
auto spin(int32_t radialLength, Point point, ChannelTarget target) {
    return [=](ImageEngine& engine) { return radialBlur(engine, radialLength, point, target); };
}
auto zoom(int32_t zoomLength, Point point, ZoomDirection direction, ChannelTarget target) {
    return [=](ImageEngine& engine) { return zoomBlur(engine, zoomLength, point, direction, target); };
}

Picture opaque(Picture picture) {
    for (Pixel& p : picture.pixels()) p.alpha = 255;
    return picture;
}

/// Mostly transparent, so that whole paths have no weight.
Picture sparse(Picture picture) {
    for (Pixel& p : picture.pixels())
        if (p.blue % 8) p.alpha = 0;
    return picture;
}

template <class Check>
void onManyPictures(Check&& check) {
    for (const auto& [width, height] : kShapes) {
        const Picture random = Picture::random(width, height, width + 2 * height);
        for (const Picture& picture : {random, opaque(random), sparse(random)})
            for (ChannelTarget target : kTargets) check(picture, target);
    }
}

TEST(MotionBlur, AveragesWhatFollows) {
    const Picture row = Picture::grey({{0, 30, 60, 90}});
    EXPECT_EQ(row.after(streak(2, 0, BlurCount::Single, ChannelTarget::RGB)),
              Picture::grey({{15, 45, 75, 90}}));
    EXPECT_EQ(row.after(streak(2, 180, BlurCount::Single, ChannelTarget::RGB)),
              Picture::grey({{0, 15, 45, 75}}));
}

TEST(MotionBlur, DistanceZeroChangesNothing) {
    const Picture picture = Picture::random(7, 5);
    for (ChannelTarget target : {ChannelTarget::RGBA, ChannelTarget::RGB, ChannelTarget::Alpha, kNoTarget})
        for (int32_t distance : {0, -1, INT_MIN})
            EXPECT_EQ(picture.after(streak(distance, 30, BlurCount::Double, target)), picture);
}

TEST(MotionBlur, DistanceOneKeepsColoursAndShiftsWeightedOnes) {
    const Picture picture = Picture::random(9, 5);
    EXPECT_EQ(picture.after(streak(1, 77, BlurCount::Single, ChannelTarget::RGB)), picture);
    // 200 * 255 >> 8 is 199, over a weight of 1.
    EXPECT_EQ(Picture(1, {{200, 0, 255, 255}}).after(streak(1, 0, BlurCount::Single, ChannelTarget::RGBA)),
              Picture(1, {{199, 0, 254, 255}}));
}

TEST(MotionBlur, TransparentPathLeavesThePixel) {
    const Picture clear(4, {{9, 8, 7, 0}, {6, 5, 4, 0}, {3, 2, 1, 0}, {0, 1, 2, 0}});
    EXPECT_EQ(clear.after(streak(3, 0, BlurCount::Double, ChannelTarget::RGBA)), clear);
}

TEST(MotionBlur, OtherTargetsAreAlpha) {
    const Picture picture = Picture::random(9, 5);
    EXPECT_EQ(picture.after(streak(4, 20, BlurCount::Single, kNoTarget)),
              picture.after(streak(4, 20, BlurCount::Single, ChannelTarget::Alpha)));
}

TEST(MotionBlur, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (int32_t distance : {1, 2, 7, 30, 300})
            for (int32_t angle : {0, 30, 45, 90, 135, 200, 270, 333, -77, 725})
                EXPECT_EQ(picture.after(streak(distance, angle, BlurCount::Single, target)),
                          referenceMotionBlur(picture, distance, angle, BlurCount::Single, target))
                    << distance << ' ' << angle << ' ' << int(target);
    });
    const Picture picture = Picture::random(23, 15);
    for (ChannelTarget target : kTargets)
        EXPECT_EQ(picture.after(streak(6, 40, BlurCount::Double, target)),
                  referenceMotionBlur(picture, 6, 40, BlurCount::Double, target));
}

TEST(MotionBlur, LongPathsEqualTheirDefinition) {
    const Picture picture = Picture::random(6, 5), solid = opaque(picture);
    for (int32_t distance : {257, 4104, 4105, 20000})
        for (int32_t angle : {0, 90, 160})
            for (ChannelTarget target : kTargets) {
                EXPECT_EQ(picture.after(streak(distance, angle, BlurCount::Single, target)),
                          referenceMotionBlur(picture, distance, angle, BlurCount::Single, target));
                EXPECT_EQ(solid.after(streak(distance, angle, BlurCount::Single, target)),
                          referenceMotionBlur(solid, distance, angle, BlurCount::Single, target));
            }
}

TEST(MotionBlur, TakesAnyArgumentsWithoutHarm) {
    const Picture picture = Picture::random(20, 9);
    for (int32_t angle : {INT_MIN, 90, INT_MAX})
        EXPECT_TRUE(
            sameAlpha(picture.after(streak(INT_MAX, angle, BlurCount::Double, ChannelTarget::RGB)), picture));
    EXPECT_EQ(picture.after(streak(INT_MAX, 0, BlurCount::Single, ChannelTarget::RGBA)).width(), 20);
}

TEST(RadialBlur, LengthBelowOneChangesNothing) {
    const Picture picture = Picture::random(7, 5);
    for (int32_t length : {0, -1, INT_MIN})
        EXPECT_EQ(picture.after(spin(length, {2, 2}, ChannelTarget::RGBA)), picture);
}

TEST(RadialBlur, PointItselfStays) {
    const Picture picture = opaque(Picture::random(9, 9));
    EXPECT_EQ(picture.after(spin(40, {4, 3}, ChannelTarget::RGB)).at(3, 4), picture.at(3, 4));
}

TEST(RadialBlur, UnsetTargetWritesNothing) {
    const Picture picture = Picture::random(7, 5);
    EXPECT_EQ(picture.after(spin(5, {2, 2}, kNoTarget)), picture);
    EXPECT_EQ(picture.after(zoom(50, {2, 2}, ZoomDirection::In, kNoTarget)), picture);
}

TEST(RadialBlur, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (int32_t length : {1, 9, 200})
            for (Point point : {Point{0, 0}, {4, 8}, {7, 20}, {-30, 11}, {200, -100}})
                EXPECT_EQ(picture.after(spin(length, point, target)),
                          referenceRadialBlur(picture, length, point, target))
                    << length << ' ' << point.x << ' ' << point.y;
    });
}

TEST(RadialBlur, LongArcsEqualTheirDefinition) {
    // From 65,794 samples on, 255 of each add to more than single precision holds exactly.
    const Picture picture = Picture::random(3, 2), solid = Picture(3, 2, {255, 253, 251, 255});
    for (int32_t length : {32896, 32897, 50000})
        for (ChannelTarget target : kTargets)
            for (const Picture& each : {picture, opaque(picture), solid})
                EXPECT_EQ(each.after(spin(length, {0, 4}, target)),
                          referenceRadialBlur(each, length, {0, 4}, target))
                    << length << ' ' << int(target);
    EXPECT_NE(solid.after(spin(50000, {0, 4}, ChannelTarget::RGB)), solid);
}

TEST(RadialBlur, TurnsLargePicturesByItsDefinition) {
    // Rows and columns through the point and corners far from it: the angles that are rounded least and most.
    const Picture picture = Picture::random(701, 67, 5);
    for (Point point : {Point{33, 350}, {-900, 700}, {20000, -20000}})
        for (int32_t length : {3, 91})
            EXPECT_EQ(picture.after(spin(length, point, ChannelTarget::RGB)),
                      referenceRadialBlur(picture, length, point, ChannelTarget::RGB))
                << point.x << ' ' << length;
}

TEST(RadialBlur, TransparentArcLeavesThePixel) {
    const Picture clear(2, {{9, 8, 7, 0}, {6, 5, 4, 0}, {3, 2, 1, 0}, {0, 1, 2, 0}});
    EXPECT_EQ(clear.after(spin(90, {0, 0}, ChannelTarget::RGBA)), clear);
}

TEST(RadialBlur, TakesAnyPointWithoutHarm) {
    const Picture picture = Picture::random(12, 9);
    for (int32_t far : {INT_MIN, -100000, 46341, 100000, INT_MAX})
        for (int32_t other : {0, far})
            EXPECT_TRUE(sameAlpha(picture.after(spin(3, {far, other}, ChannelTarget::RGB)), picture));
    EXPECT_THROW(static_cast<void>(Picture(picture).apply(spin(INT_MAX, {2, 2}, ChannelTarget::RGB))),
                 std::bad_alloc);
}

TEST(ZoomBlur, PointItselfAndLengthZeroStay) {
    const Picture picture = Picture::random(9, 9);
    for (ChannelTarget target : kTargets) {
        EXPECT_EQ(picture.after(zoom(90, {4, 3}, ZoomDirection::In, target)).at(3, 4), picture.at(3, 4));
        EXPECT_EQ(picture.after(zoom(0, {4, 3}, ZoomDirection::In, target)), picture);
        EXPECT_EQ(picture.after(zoom(-50, {4, 3}, ZoomDirection::Out, target)), picture);
    }
}

TEST(ZoomBlur, EqualsItsDefinition) {
    onManyPictures([](const Picture& picture, ChannelTarget target) {
        for (int32_t length : {5, 30, 700})
            for (Point point : {Point{0, 0}, {4, 8}, {7, 20}, {-30, 11}, {200, -100}})
                for (ZoomDirection direction : {ZoomDirection::In, ZoomDirection::Out})
                    EXPECT_EQ(picture.after(zoom(length, point, direction, target)),
                              referenceZoomBlur(picture, length, point, direction, target))
                        << length << ' ' << point.x << ' ' << point.y << ' ' << int(direction);
    });
}

TEST(ZoomBlur, LongRaysEqualTheirDefinition) {
    const Picture picture = Picture::random(203, 37, 5);
    for (Point point : {Point{18, 101}, {-300, 260}})
        for (int32_t length : {100, 1500})
            for (ZoomDirection direction : {ZoomDirection::In, ZoomDirection::Out})
                EXPECT_EQ(picture.after(zoom(length, point, direction, ChannelTarget::RGBA)),
                          referenceZoomBlur(picture, length, point, direction, ChannelTarget::RGBA))
                    << point.x << ' ' << length << ' ' << int(direction);
}

TEST(ZoomBlur, TransparentRayTakesAlphaAlone) {
    const Picture clear = Picture(5, 5, {9, 8, 7, 0});
    EXPECT_EQ(clear.after(zoom(60, {0, 0}, ZoomDirection::In, ChannelTarget::RGBA)), clear);
}

TEST(ZoomBlur, TakesAnyArgumentsWithoutHarm) {
    const Picture picture = Picture::random(12, 9);
    for (int32_t far : {INT_MIN, -100000, 46341, INT_MAX})
        for (ZoomDirection direction : {ZoomDirection::In, ZoomDirection::Out})
            for (int32_t length : {INT_MIN, 10, INT_MAX})
                for (Point point : {Point{far, 3}, {3, 3}})
                    EXPECT_TRUE(sameAlpha(picture.after(zoom(length, point, direction, ChannelTarget::RGB)),
                                          picture));
}

TEST(PathBlurs, DoNotDependOnBands) {
    for (ChannelTarget target : kTargets) {
        expectSameForAnyBands(streak(5, 33, BlurCount::Double, target));
        expectSameForAnyBands(spin(20, {3, 2}, target));
        expectSameForAnyBands(zoom(40, {3, 2}, ZoomDirection::In, target));
    }
}

TEST(PathBlurs, BandsThatCannotBeHadLeaveThePicture) {
    const Picture picture = Picture::random(9, 7);
    for (const auto& effect : std::initializer_list<std::function<Status(ImageEngine&)>>{
             streak(5, 33, BlurCount::Double, ChannelTarget::RGBA), spin(20, {3, 2}, ChannelTarget::RGB),
             zoom(40, {3, 2}, ZoomDirection::In, ChannelTarget::RGB)}) {
        Picture result = picture;
        faults().tasks = 0;
        EXPECT_EQ(result.apply(effect, 3), kStatusNoTaskMemory);
        faults().tasks = -1;
        faults().threads = 0;
        EXPECT_EQ(result.apply(effect, 3), kStatusThreadFailed);
        faults().threads = -1;
        EXPECT_EQ(result, picture);
    }
}

TEST(PathBlurs, NeedAnImage) {
    expectStateTests(streak(0, 0, BlurCount::Single, ChannelTarget::RGB));
    expectStateTests(spin(0, {}, ChannelTarget::RGB));
    expectStateTests(zoom(0, {}, ZoomDirection::In, ChannelTarget::RGB));
}

}  // namespace
}  // namespace krl::test
