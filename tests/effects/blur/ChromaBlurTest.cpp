#include <gtest/gtest.h>

#include "core/LookupTables.h"
#include "effects/blur/ChromaBlur.h"
#include "kernels/blur/ChromaBox.h"
#include "kernels/blur/ChromaImage.h"
#include "kernels/blur/TentBlur.h"
#include "reference/ChromaReference.h"
#include "reference/TentBlurReference.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

constexpr ChromaBlurType kTypes[] = {ChromaBlurType::Horizontal, ChromaBlurType::Vertical,
                                     ChromaBlurType::Box, ChromaBlurType::Gaussian};

std::vector<Pixel> split(const Picture& picture) {
    std::vector<Pixel> words;
    for (const Pixel& p : picture.pixels()) words.push_back(reference::chromaByDivision(p));
    return words;
}

/// The way back through the shared tables; alpha of `picture`.
Picture merged(const std::vector<Pixel>& words, Picture picture) {
    const LookupTables& tables = sharedTables();
    for (size_t i = 0; i < words.size(); ++i) {
        const auto [u, v, y, unused] = words[i];
        Pixel& p = picture.pixels()[i];
        p.blue = clampByte(tables.blueFromU[u] + y);
        p.green = clampByte(y - tables.greenFromU[u] - tables.greenFromV[v]);
        p.red = clampByte(y + tables.redFromV[v]);
    }
    return picture;
}

std::vector<Pixel> blurredChroma(std::vector<Pixel> words, int32_t height, int32_t width, ChromaBlurType type,
                                 int32_t amount, int32_t threads) {
    if (type == ChromaBlurType::Gaussian) return reference::tentPixels(words, height, width, amount, 0, 1);
    if (type != ChromaBlurType::Vertical) reference::boxRows(words, height, width, amount);
    if (type != ChromaBlurType::Horizontal) reference::boxColumns(words, height, width, amount, threads);
    return words;
}

Picture boxed(Picture picture, int32_t halfWidth, int32_t threads) {
    EXPECT_EQ(
        boxChromaColumns(picture.pixels().data(), picture.height(), picture.width(), halfWidth, threads),
        kStatusOk);
    return picture;
}

}  // namespace

// Integer division, the float scale and the fast form agree for every luma and every difference, so
// one conversion serves all effects.
TEST(Chroma, IsTheSameByDivisionByScaleAndInVectors) {
    for (int32_t n = 0; n <= 255000; ++n) {
        ASSERT_EQ(thousandth(n), n / 1000);
        ASSERT_EQ(truncate(n * reference::kThousandth), n / 1000);
    }
    for (int32_t factor : {565, 713, 1770, 344, 714, 1403}) {
        for (int32_t difference = -255; difference <= 255; ++difference) {
            const int32_t n = factor * difference;
            ASSERT_EQ(thousandth(n), n / 1000);
            ASSERT_EQ(-truncate(n * -reference::kThousandth), n / 1000);
        }
    }
}

TEST(Chroma, FitsBytesForEveryColour) {
    for (int32_t blue = 0; blue < 256; blue += 3)
        for (int32_t green = 0; green < 256; green += 5)
            for (int32_t red = 0; red < 256; red += 3) {
                const Pixel p{uint8_t(blue), uint8_t(green), uint8_t(red), 0};
                ASSERT_EQ(reference::chromaByDivision(p), reference::chromaByScale(p));
            }
    EXPECT_EQ(reference::chromaByDivision({255, 0, 0, 0}), (Pixel{255, 108, 29, 0}));
    EXPECT_EQ(reference::chromaByDivision({0, 0, 255, 0}), (Pixel{86, 255, 76, 0}));
}

TEST(YuvBlur, PassesThePictureThroughTheConversionEvenWithoutAnAmount) {
    const Picture source = Picture::random(31, 12);
    for (ChromaBlurType type : kTypes)
        for (int32_t amount : {0, -5})
            EXPECT_EQ(source.after([=](ImageEngine& e) { return yuvBlur(e, type, amount); }),
                      merged(split(source), source));
    EXPECT_NE(merged(split(source), source), source);
}

TEST(YuvBlur, BlursColourDifferencesByBoxOrTent) {
    constexpr int32_t shapes[][2] = {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {40, 23}, {130, 7}};
    for (const auto& [width, height] : shapes) {
        const Picture source = Picture::random(width, height, width);
        for (ChromaBlurType type : kTypes) {
            for (int32_t amount : {1, 2, 7, 60, 2000}) {
                for (int32_t threads : {1, 2, 3, 7}) {
                    const auto words = blurredChroma(split(source), height, width, type, amount, threads);
                    ASSERT_EQ(source.after([=](ImageEngine& e) { return yuvBlur(e, type, amount); }, threads),
                              merged(words, source))
                        << int(type) << ' ' << width << 'x' << height << " by " << amount << " in "
                        << threads;
                }
            }
        }
    }
}

TEST(YuvBlur, TakesAnyAmount) {
    const Picture source = Picture::random(9, 5);
    for (ChromaBlurType type : kTypes)
        source.after([=](ImageEngine& e) { return yuvBlur(e, type, INT32_MAX); }, 2);
}

TEST(YuvBlur, IsTheSameForAnyBandsAlongRowsAndByTent) {
    for (ChromaBlurType type : {ChromaBlurType::Horizontal, ChromaBlurType::Gaussian})
        expectSameForAnyBands([=](ImageEngine& e) { return yuvBlur(e, type, 3); });
}

TEST(YuvBlur, TestsTheStateFirst) {
    for (ChromaBlurType type : kTypes) expectStateTests([=](ImageEngine& e) { return yuvBlur(e, type, 1); });
}

// Three rows of one column, on one thread: the first walk sees rows 0 and 1, the second, from the
// address past the edge, rows 1 and 2.
TEST(ChromaBox, LeavesTheLastRowToTheSecondWalkOfColumnZero) {
    const Picture source(
        2, {{0, 0, 0, 0}, {0, 0, 0, 0}, {100, 0, 0, 0}, {100, 0, 0, 0}, {30, 0, 0, 0}, {30, 0, 0, 0}});
    EXPECT_EQ(
        boxed(source, 1, 1),
        Picture(2,
                {{50, 0, 0, 0}, {50, 0, 0, 0}, {40, 0, 0, 0}, {50, 0, 0, 0}, {40, 0, 0, 0}, {30, 0, 0, 0}}));
}

TEST(ChromaBox, FiltersTheColumnWhereBandsMeetTwice) {
    const Picture source = Picture::random(8, 6);
    const Picture one = boxed(source, 2, 1), two = boxed(source, 2, 2);
    for (int32_t y = 0; y < 5; ++y)
        for (int32_t x : {5, 6, 7}) EXPECT_EQ(two.at(x, y), one.at(x, y)) << "last band";
    EXPECT_NE(two.at(4, 2), one.at(4, 2));
    EXPECT_EQ(two.at(5, 5), source.at(5, 5)) << "last row of the last band";
    EXPECT_NE(two.at(2, 5), source.at(2, 5)) << "last row of the first band";
}

TEST(ChromaBox, IsAsIfBandsRanInOrder) {
    for (int32_t width : {1, 2, 3, 5, 16, 70, 200})
        for (int32_t height : {1, 2, 3, 11})
            for (int32_t threads : {1, 2, 3, 4, 7, 16})
                for (int32_t halfWidth : {1, 3, 50}) {
                    const Picture source = Picture::random(width, height, width + height);
                    Picture expected = source;
                    reference::boxColumns(expected.pixels(), height, width, halfWidth, threads);
                    ASSERT_EQ(boxed(source, halfWidth, threads), expected)
                        << width << 'x' << height << " in " << threads << " by " << halfWidth;
                }
}

TEST(BlurProYuv, BlursEachPlaneByItsOwnRadius) {
    const Picture source = Picture::random(37, 18);
    auto words = split(source);
    words = reference::tentPixels(words, 18, 37, 9, 0, 0);
    words = reference::tentPixels(words, 18, 37, 2, 1, 1);
    words = reference::tentPixels(words, 18, 37, 4, 2, 2);
    for (int32_t threads : {1, 3})
        EXPECT_EQ(source.after([](ImageEngine& e) { return blurProYUV(e, 4, 9, 2); }, threads),
                  merged(words, source));
}

TEST(BlurProYuv, WithoutRadiiIsTheConversionAlone) {
    const Picture source = Picture::random(20, 20);
    EXPECT_EQ(source.after([](ImageEngine& e) { return blurProYUV(e, 0, -1, 0); }),
              merged(split(source), source));
    expectStateTests([](ImageEngine& e) { return blurProYUV(e, 1, 1, 1); });
    expectSameForAnyBands([](ImageEngine& e) { return blurProYUV(e, 3, 5, 8); });
}

}  // namespace krl::test
