#include <gtest/gtest.h>

#include "krlimage/fields.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

/// One column whose pixel in row y is y.
Picture rowsOf(int32_t height) {
    Picture picture(1, height);
    for (int32_t y = 0; y < height; ++y) picture.at(0, y).blue = uint8_t(y);
    return picture;
}

std::vector<int> levels(const Picture& picture) {
    std::vector<int> rows;
    for (const Pixel& p : picture.pixels()) rows.push_back(p.blue);
    return rows;
}

std::vector<int> interlaced(int32_t height, InterlaceType type, int32_t dominance) {
    return levels(rowsOf(height).after([=](ImageEngine& e) { return interlace(e, type, dominance); }));
}

using Rows = std::vector<int>;
constexpr auto kDeinterlace = InterlaceType::Deinterlace;
constexpr auto kSplitField = InterlaceType::SplitField;

TEST(Interlace, DeinterlaceTakesRowsFromBelowOrAbove) {
    EXPECT_EQ(interlaced(6, kDeinterlace, 0), (Rows{1, 1, 3, 3, 5, 5}));
    EXPECT_EQ(interlaced(5, kDeinterlace, 0), (Rows{0, 2, 2, 4, 4}));
    EXPECT_EQ(interlaced(6, kDeinterlace, 1), (Rows{0, 0, 2, 2, 4, 4}));
    EXPECT_EQ(interlaced(5, kDeinterlace, 1), (Rows{0, 1, 1, 3, 3}));
}

TEST(Interlace, SplitFieldZeroIsDeinterlaceOne) {
    for (const int32_t height : {1, 2, 3, 8, 9})
        EXPECT_EQ(interlaced(height, kSplitField, 0), interlaced(height, kDeinterlace, 1)) << height;
}

/// The second split field, step by step: the scratch copy first loses a field, then moves down a row.
Rows splitFieldThroughScratch(int32_t height) {
    const Rows image = levels(rowsOf(height));
    Rows scratch = image, result = image;
    for (int32_t y = height - 2; y >= 0; y -= 2) scratch[size_t(y)] = image[size_t(y) + 1];
    for (int32_t y = height - 1; y >= 1; --y) result[size_t(y)] = scratch[size_t(y) - 1];
    return result;
}

TEST(Interlace, SplitFieldOneMovesOneFieldDown) {
    EXPECT_EQ(interlaced(6, kSplitField, 1), (Rows{0, 1, 1, 3, 3, 5}));
    for (const int32_t height : {1, 2, 3, 4, 5, 8, 9})
        EXPECT_EQ(interlaced(height, kSplitField, 1), splitFieldThroughScratch(height)) << height;
}

TEST(Interlace, LeavesASingleRow) {
    for (const InterlaceType type : {kDeinterlace, kSplitField})
        for (const int32_t dominance : {0, 1}) EXPECT_EQ(interlaced(1, type, dominance), Rows{0});
}

TEST(Interlace, MovesWholeRowsWithAlpha) {
    const Picture source = Picture::random(7, 4);
    const Picture result = source.after([](ImageEngine& e) { return interlace(e, kDeinterlace, 0); });
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 7; ++x) EXPECT_EQ(result.at(x, y), source.at(x, y | 1));
}

TEST(Interlace, SameForAnyBandsAndNeedsAnImage) {
    for (const int32_t dominance : {0, 1}) {
        const auto effect = [=](ImageEngine& e) { return interlace(e, kSplitField, dominance); };
        test::expectSameForAnyBands(effect);
        test::expectStateTests(effect);
    }
}

/// `one` after the odd rows of `two` came in.
Picture reinterlaced(Picture one, const Picture& two, int32_t bands, Status expected = kStatusOk) {
    ImageEngine engine;
    engine.setThreadCount(bands);
    EXPECT_EQ(
        reinterlace(engine, reinterpret_cast<uint8_t*>(one.pixels().data()), one.info(), two.asSecondImage()),
        expected);
    return one;
}

/// Which rows of a picture of `height` come from the second image.
Rows rowsReplaced(int32_t height, int32_t bands) {
    const Picture result = reinterlaced(rowsOf(height), Picture(1, height, {200, 0, 0, 255}), bands);
    Rows replaced;
    for (int32_t y = 0; y < height; ++y)
        if (result.at(0, y).blue == 200) replaced.push_back(y);
    return replaced;
}

TEST(Reinterlace, TakesEverySecondRow) {
    EXPECT_EQ(rowsReplaced(6, 1), (Rows{1, 3, 5}));
    EXPECT_EQ(rowsReplaced(8, 2), (Rows{1, 3, 5, 7}));
    EXPECT_EQ(rowsReplaced(1, 1), Rows{});
}

TEST(Reinterlace, ChangesFieldAtABandOfOddHeight) {
    EXPECT_EQ(rowsReplaced(6, 2), (Rows{1, 4}));
    EXPECT_EQ(rowsReplaced(10, 4), (Rows{1, 4, 7}));
}

TEST(Reinterlace, LeavesOutTheLastRowOfAnOddHeightForAnyBands) {
    for (const int32_t bands : {1, 2, 3, 7}) EXPECT_EQ(rowsReplaced(7, bands), (Rows{1, 3, 5})) << bands;
}

TEST(Reinterlace, CopiesWhatLiesInBothWhenOneDimensionDiffers) {
    const Picture narrow = Picture::random(2, 4, 1), wide = Picture::random(5, 4, 2);
    const Picture low = Picture::random(2, 2, 3);

    const Picture fromWide = reinterlaced(narrow, wide, 1);
    EXPECT_EQ(fromWide.at(1, 3), wide.at(1, 3));
    EXPECT_EQ(fromWide.at(1, 2), narrow.at(1, 2));

    const Picture fromNarrow = reinterlaced(wide, narrow, 1);
    EXPECT_EQ(fromNarrow.at(1, 1), narrow.at(1, 1));
    EXPECT_EQ(fromNarrow.at(2, 1), wide.at(2, 1));

    const Picture fromLow = reinterlaced(narrow, low, 1);
    EXPECT_EQ(fromLow.at(0, 1), low.at(0, 1));
    EXPECT_EQ(fromLow.at(0, 3), narrow.at(0, 3));
}

TEST(Reinterlace, RefusesTwoDifferencesAndMissingPixels) {
    const Picture source = Picture::random(4, 4);
    EXPECT_EQ(reinterlaced(source, Picture(5, 5), 1, kStatusRefused), source);

    ImageEngine engine;
    Picture one(2, 2);
    const auto pixels = reinterpret_cast<uint8_t*>(one.pixels().data());
    EXPECT_EQ(reinterlace(engine, pixels, one.info(), SecondImage{}), kStatusNoPixels);
    EXPECT_EQ(reinterlace(engine, nullptr, one.info(), one.asSecondImage()), kStatusNoPixels);
}

}  // namespace
}  // namespace krl
