#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/LookupTables.h"
#include "kernels/colour/ColourSpace.h"
#include "krlimage/warp.h"
#include "reference/WarpReference.h"

namespace krl::test {
namespace {

struct Displacement {
    MapOption one = MapOption::Red, two = MapOption::Off;
    float across = 0, down = 0;
    MapEdge edge = MapEdge::Wrap;
};

auto displacing(const Picture& one, const Picture& two, Displacement d) {
    return [&one, &two, d](ImageEngine& e) {
        return displacementMapComposite(e, {one.asSecondImage(), d.one}, {two.asSecondImage(), d.two},
                                        d.across, d.down, d.edge);
    };
}

int slowValue(Pixel p, MapOption option, int first) {
    const LookupTables& t = sharedTables();
    const Hls hls = rgbToHls(p.red, p.green, p.blue);
    switch (option) {
        case MapOption::SameAsMapOne:
            return first;
        case MapOption::Off:
            return 128;
        case MapOption::Red:
            return p.red;
        case MapOption::Green:
            return p.green;
        case MapOption::Blue:
            return p.blue;
        case MapOption::Alpha:
            return p.alpha / 2;
        case MapOption::Greyscale:
            return (p.blue + p.green + p.red) / 3;
        case MapOption::Luminosity:
            return int(double(t.lumaRed[p.red]) + t.lumaGreen[p.green] + t.lumaBlue[p.blue]);
        case MapOption::Hue:
            return hls.hue == -1 ? 0 : int(hls.hue / 360.0 * 255);
        case MapOption::Saturation:
            return int(hls.saturation / 720.0 * 255);
        default: {
            const int max = std::max({p.red, p.green, p.blue}), min = std::min({p.red, p.green, p.blue});
            return int((max + min) * 0.5 + 0.5);
        }
    }
}

Picture slowDisplacement(const Picture& picture, const Picture& one, const Picture& two, Displacement d) {
    const LookupTables& t = sharedTables();
    SlowWarp warp(picture, SampleQuality::Bilinear, ChannelTarget::RGBA);
    const auto shift = [&](int value, float distance) {
        const double f = t.unitFromByte[value];
        return float((f < 0.5 ? f - 0.5 : 0.5 - f) * distance);
    };
    const auto edged = [&](float place, int32_t size) {
        if (d.edge == MapEdge::Wrap) return place < 0 ? 0 : place >= float(size) ? float(size - 1) : place;
        while (place < 0) place = place + float(size);
        while (place >= float(size)) place = place - float(size);
        return place;
    };
    for (int32_t y = 0; y < picture.height(); ++y)
        for (int32_t x = 0; x < picture.width(); ++x) {
            const Pixel p = one.at(x, y), q = two.at(x, y);
            const int a = slowValue(p, d.one, 0), b = slowValue(q, d.two, a);
            const double moveX = double(t.unitFromByte[p.alpha]) * shift(a, d.across);
            const double moveY = double(t.unitFromByte[q.alpha]) * shift(b, d.down);
            const auto fromX = float(t.unitFromByte[a] < 0.5 ? x + moveX : x - moveX);
            const auto fromY = float(t.unitFromByte[b] < 0.5 ? y - moveY : y + moveY);
            warp.place(x, y, edged(fromX, picture.width()), edged(fromY, picture.height()));
        }
    return warp.result;
}

TEST(DisplacementMap, ReadsFromTheRightAndAboveWhereTheMapIsBright) {
    const Picture picture = Picture::grey({{0, 10, 20}, {30, 40, 50}, {60, 70, 80}});
    const Picture white(3, 3, {255, 255, 255, 255}), black(3, 3, {0, 0, 0, 255});
    // Half of a distance of 2 is one pixel.
    EXPECT_EQ(picture.after(displacing(white, white, {MapOption::Red, MapOption::Red, 2, 0})).at(0, 1),
              picture.at(1, 1));
    EXPECT_EQ(picture.after(displacing(white, white, {MapOption::Red, MapOption::Red, 0, 2})).at(1, 1),
              picture.at(1, 0));
    EXPECT_EQ(picture.after(displacing(black, black, {MapOption::Red, MapOption::Red, 2, 0})).at(1, 1),
              picture.at(0, 1));
    EXPECT_EQ(
        picture.after(displacing(black, black, {MapOption::Red, MapOption::SameAsMapOne, 0, 2})).at(1, 1),
        picture.at(1, 2));
}

TEST(DisplacementMap, EdgeWordsStandTheOtherWayRound) {
    const Picture picture = Picture::grey({{0, 10, 20}}), white(3, 1, {255, 255, 255, 255});
    EXPECT_EQ(picture.after(displacing(white, white, {MapOption::Red, MapOption::Off, 2, 0, MapEdge::Wrap})),
              Picture::grey({{10, 20, 20}}));
    EXPECT_EQ(
        picture.after(displacing(white, white, {MapOption::Red, MapOption::Off, 2, 0, MapEdge::Repeat})),
        Picture::grey({{10, 20, 0}}));
    // Seven to the right is one to the right.
    EXPECT_EQ(
        picture.after(displacing(white, white, {MapOption::Red, MapOption::Off, 14, 0, MapEdge::Repeat})),
        Picture::grey({{10, 20, 0}}));
}

TEST(DisplacementMap, OffIsTheShiftOf128) {
    const Picture picture = Picture::random(40, 30), off = Picture::random(40, 30, 2);
    Picture mid(40, 30, {128, 128, 128, 255});
    for (size_t i = 0; i < mid.pixels().size(); ++i) mid.pixels()[i].alpha = off.pixels()[i].alpha;
    EXPECT_EQ(picture.after(displacing(off, off, {MapOption::Off, MapOption::Off, 500, 300})),
              picture.after(displacing(mid, mid, {MapOption::Red, MapOption::Green, 500, 300})));
    EXPECT_FALSE(picture.after(displacing(off, off, {MapOption::Off, MapOption::Off, 500, 300})) == picture);
}

TEST(DisplacementMap, OfATransparentMapShiftsNothing) {
    const Picture picture = Picture::random(20, 10), clear(20, 10, {255, 0, 255, 0});
    EXPECT_EQ(picture.after(displacing(clear, clear, {MapOption::Red, MapOption::Red, 50, 50})), picture);
}

TEST(DisplacementMap, WithoutDistanceReadsNoMap) {
    Picture picture = Picture::random(6, 5);
    const Picture before = picture, map(6, 5);
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    for (auto [across, down] : {std::pair{0.0f, 0.0f}, {-5.0f, 0.0f}, {-1.0f, -2.0f}, {nan, nan}}) {
        EXPECT_EQ(picture.apply(displacing(map, map, {MapOption::Red, MapOption::Red, across, down})),
                  kStatusOk);
        EXPECT_EQ(picture, before);
    }
}

TEST(DisplacementMap, RefusesMapsOfAnotherSize) {
    Picture picture = Picture::random(6, 5);
    const Picture before = picture, fits(6, 5), narrow(5, 5);
    for (const auto& [one, two] : {std::pair{&fits, &narrow}, {&narrow, &fits}}) {
        EXPECT_EQ(picture.apply(displacing(*one, *two, {MapOption::Red, MapOption::Red, 5, 5})),
                  kStatusRefused);
        EXPECT_EQ(picture.apply(displacing(*one, *two, {MapOption::Red, MapOption::Red, 0, 0})),
                  kStatusRefused);
    }
    EXPECT_EQ(picture.apply([](ImageEngine& e) {
        const DisplacementMap none{{nullptr, {6, 5, 24, 0, 0, 0}}, MapOption::Red};
        return displacementMapComposite(e, none, none, 5, 5, MapEdge::Wrap);
    }),
              kStatusRefused);
    EXPECT_EQ(picture, before);
}

TEST(DisplacementMap, FollowsTheSlowRoadInEveryOption) {
    const Picture picture = Picture::random(361, 37, 1), one = Picture::random(361, 37, 2),
                  two = Picture::random(361, 37, 3);
    for (int32_t option = 34; option <= 44; ++option)
        for (MapEdge edge : {MapEdge::Wrap, MapEdge::Repeat}) {
            const MapOption first = option == 34 ? MapOption::Hue : MapOption(option);
            const Displacement d{first, MapOption(option), 37.5f, 900, edge};
            EXPECT_EQ(picture.after(displacing(one, two, d)), slowDisplacement(picture, one, two, d))
                << option;
        }
}

TEST(DisplacementMap, MayComputeWhatTheTablesHold) {
    const LookupTables& t = sharedTables();
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(t.lumaRed[i], static_cast<float>(i * 0.299)) << i;
        EXPECT_EQ(t.lumaGreen[i], static_cast<float>(i * 0.587)) << i;
        EXPECT_EQ(t.lumaBlue[i], static_cast<float>(i * 0.114)) << i;
        EXPECT_EQ(t.unitFromByte[i], static_cast<float>(i) / 255.0f) << i;
    }
    for (int sum = 0; sum <= 765; ++sum) EXPECT_EQ(t.meanOf3[sum], sum / 3);
}

TEST(DisplacementMap, IsTheSameInAnyNumberOfBandsAndForAnyDistance) {
    for (float distance : {3.0f, 1e9f, 3e38f, std::numeric_limits<float>::infinity()})
        for (MapEdge edge : {MapEdge::Wrap, MapEdge::Repeat})
            expectSameForAnyBands([=](ImageEngine& e) {
                const Picture map = Picture::random(e.buffer()->width, e.buffer()->height, 77);
                return displacing(map, map, {MapOption::Blue, MapOption::Alpha, distance, 4, edge})(e);
            });
    const Picture map(2, 2);
    expectStateTests(displacing(map, map, {MapOption::Red, MapOption::Red, 5, 5}));
}

}  // namespace
}  // namespace krl::test
