#include <gtest/gtest.h>

#include "krlimage/fields.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

constexpr Pixel kUntouched{1, 2, 3, 4};

Picture halved(const Picture& source, int32_t bands = 1) {
    Picture copy = source, half(source.width() / 2, source.height() / 2, kUntouched);
    const NewImage target{reinterpret_cast<uint8_t*>(half.pixels().data()), half.info()};
    EXPECT_EQ(copy.apply([&](ImageEngine& e) { return halfSize(e, target); }, bands), kStatusOk);
    EXPECT_EQ(copy, source);
    return half;
}

uint8_t meanOfTile(const Picture& source, int32_t x, int32_t y, size_t channel) {
    const auto at = [&](int32_t dx, int32_t dy) { return source.at(x + dx, y + dy)[channel]; };
    return uint8_t((at(0, 0) + at(1, 0) + at(0, 1) + at(1, 1)) >> 2);
}

/// The half as its bands define it: each walks its own rows of the image in pairs.
Picture halvedLiterally(const Picture& source, int32_t bands) {
    const int32_t height = source.height();
    Picture half(source.width() / 2, height / 2, kUntouched);
    const int32_t sourceShare = (height + bands - 1) / bands;
    const int32_t halfShare = (half.height() + bands - 1) / bands;
    for (int32_t band = 0; band < bands; ++band) {
        int32_t halfY = band * halfShare;
        for (int32_t y = band * sourceShare; y < (band + 1) * sourceShare && y < height - 1;
             y += 2, ++halfY) {
            if (halfY >= (band + 1) * halfShare || halfY >= half.height()) break;
            for (int32_t x = 0; x < source.width() - 1; x += 2)
                for (size_t c = 0; c < 4; ++c) half.at(x / 2, halfY)[c] = meanOfTile(source, x, y, c);
        }
    }
    return half;
}

TEST(HalfSize, AveragesBlocksRoundingDownAlphaIncluded) {
    const Picture source(2, {{1, 255, 0, 10}, {2, 255, 0, 20}, {3, 255, 0, 30}, {4, 255, 3, 43}});
    EXPECT_EQ(halved(source), Picture(1, {{2, 255, 0, 25}}));
}

TEST(HalfSize, DropsTheLastOddRowAndColumn) {
    const Picture source = Picture::random(7, 5);
    const Picture half = halved(source);
    ASSERT_EQ(half.width(), 3);
    ASSERT_EQ(half.height(), 2);
    for (size_t c = 0; c < 4; ++c) EXPECT_EQ(half.at(2, 1)[c], meanOfTile(source, 4, 2, c));
}

TEST(HalfSize, FollowsItsBands) {
    for (const auto& [width, height] : {std::pair{2, 2}, {33, 17}, {16, 7}, {9, 10}, {4, 64}, {5, 3}})
        for (const int32_t bands : {1, 2, 3, 4, 7, 8}) {
            const Picture source = Picture::random(width, height, bands);
            EXPECT_EQ(halved(source, bands), halvedLiterally(source, bands))
                << width << 'x' << height << " in " << bands << " bands";
        }
}

TEST(HalfSize, StartsABlockAtTheFirstRowOfEachBand) {
    const Picture source = Picture::random(2, 6);
    const Picture half = halved(source, 2);
    EXPECT_EQ(half.at(0, 2).blue, meanOfTile(source, 0, 3, 0));
}

TEST(HalfSize, LeavesTheRowThatNoBandReaches) {
    EXPECT_EQ(halved(Picture::random(2, 7), 3).at(0, 2), kUntouched);
}

TEST(HalfSize, ReportsItsSize) {
    Picture picture(9, 4);
    ImageInfo half;
    EXPECT_EQ(picture.apply([&](ImageEngine& e) { return halfSizeInfo(e, half); }), kStatusOk);
    EXPECT_EQ(half.width, 4);
    EXPECT_EQ(half.height, 2);
    EXPECT_EQ(half.rowBytes, 16);
}

TEST(HalfSize, RefusesASingleRowOrColumn) {
    ImageInfo half;
    for (const auto& [width, height] : {std::pair{1, 8}, {8, 1}, {1, 1}}) {
        Picture picture(width, height);
        EXPECT_EQ(picture.apply([&](ImageEngine& e) { return halfSizeInfo(e, half); }), kStatusRefused);
        EXPECT_EQ(picture.apply([](ImageEngine& e) { return halfSize(e, {}); }), kStatusRefused);
    }
}

TEST(HalfSize, RefusesATargetOfAnotherSize) {
    Picture picture(8, 8), half(4, 3);
    const NewImage target{reinterpret_cast<uint8_t*>(half.pixels().data()), half.info()};
    EXPECT_EQ(picture.apply([&](ImageEngine& e) { return halfSize(e, target); }), kStatusRefused);
}

TEST(HalfSize, NeedsAnImage) {
    test::expectStateTests([](ImageEngine& e) { return halfSize(e, {}); });
}

}  // namespace
}  // namespace krl
