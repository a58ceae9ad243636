#include <gtest/gtest.h>

#include "core/LookupTables.h"
#include "krlimage/blur.h"
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

}  // namespace

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
