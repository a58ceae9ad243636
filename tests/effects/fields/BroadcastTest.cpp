#include <gtest/gtest.h>

#include <algorithm>

#include "krlimage/fields.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

/// Pictures that a split fills.
struct Parts {
    std::vector<Picture> pictures;

    Parts(int32_t count, int32_t width, int32_t height)
        : pictures(size_t(count), Picture(width, height, {9, 9, 9, 9})) {}

    std::vector<NewImage> targets() {
        std::vector<NewImage> made;
        for (Picture& p : pictures) made.push_back({reinterpret_cast<uint8_t*>(p.pixels().data()), p.info()});
        return made;
    }
    std::vector<SecondImage> sources() const {
        std::vector<SecondImage> made;
        for (const Picture& p : pictures) made.push_back(p.asSecondImage());
        return made;
    }
};

NewImage targetOf(Picture& picture) {
    return {reinterpret_cast<uint8_t*>(picture.pixels().data()), picture.info()};
}

Status split(const Picture& picture, Parts& parts) {
    Picture copy = picture;
    return copy.apply([&](ImageEngine& engine) { return broadcastSplit(engine, parts.targets()); });
}

TEST(BroadcastSplit, FourMeansFactorTwoAndAllElseFactorFour) {
    EXPECT_EQ(broadcastFactor(4), 2);
    EXPECT_EQ(broadcastFactor(16), 4);
    EXPECT_EQ(broadcastFactor(0), 4);
    EXPECT_EQ(broadcastFactor(-4), 4);
}

TEST(BroadcastSplit, DealsBlocksOutRowByRow) {
    Picture picture(4, 2);
    for (int32_t i = 0; i < 8; ++i) picture.at(i % 4, i / 4) = {uint8_t(i), 1, 2, uint8_t(100 + i)};
    Parts parts(4, 2, 1);
    ASSERT_EQ(split(picture, parts), kStatusOk);
    EXPECT_EQ(parts.pictures[0], Picture(2, {{0, 1, 2, 100}, {2, 1, 2, 102}}));
    EXPECT_EQ(parts.pictures[1], Picture(2, {{1, 1, 2, 101}, {3, 1, 2, 103}}));
    EXPECT_EQ(parts.pictures[2], Picture(2, {{4, 1, 2, 104}, {6, 1, 2, 106}}));
    EXPECT_EQ(parts.pictures[3], Picture(2, {{5, 1, 2, 105}, {7, 1, 2, 107}}));
}

TEST(BroadcastSplit, DropsRowsAndColumnsBeyondTheLastWholeBlock) {
    for (const int32_t factor : {2, 4}) {
        const Picture picture = Picture::random(11, 9, 3);
        Parts parts(factor * factor, 11 / factor, 9 / factor);
        ASSERT_EQ(split(picture, parts), kStatusOk);
        for (int32_t y = 0; y < 9 / factor * factor; ++y)
            for (int32_t x = 0; x < 11 / factor * factor; ++x) {
                const Picture& part = parts.pictures[size_t(y % factor * factor + x % factor)];
                EXPECT_EQ(part.at(x / factor, y / factor), picture.at(x, y));
            }
    }
}

TEST(BroadcastSplit, ReportsTheSizeOfAPart) {
    Picture picture(11, 9);
    ImageInfo part;
    EXPECT_EQ(picture.apply([&](ImageEngine& engine) { return broadcastPartSize(engine, 2, part); }),
              kStatusOk);
    EXPECT_EQ(part.width, 5);
    EXPECT_EQ(part.height, 4);
    EXPECT_EQ(part.rowBytes, 20);
}

TEST(BroadcastSplit, RefusesAPictureSmallerThanABlock) {
    for (const auto& [width, height] : {std::pair{3, 8}, {8, 3}, {1, 1}}) {
        Picture picture(width, height);
        ImageInfo part;
        EXPECT_EQ(picture.apply([&](ImageEngine& engine) { return broadcastPartSize(engine, 4, part); }),
                  kStatusRefused);
    }
}

TEST(BroadcastSplit, RefusesPartsOfAnotherCountOrSize) {
    const Picture picture = Picture::random(8, 8);
    Parts three(3, 4, 4), small(4, 3, 4), none(0, 1, 1);
    EXPECT_EQ(split(picture, three), kStatusRefused);
    EXPECT_EQ(split(picture, small), kStatusRefused);
    EXPECT_EQ(split(picture, none), kStatusRefused);
}

TEST(BroadcastSplit, NeedsAnImage) {
    ImageInfo part;
    test::expectStateTests([&](ImageEngine& engine) { return broadcastPartSize(engine, 2, part); });
    Parts parts(4, 1, 1);
    test::expectStateTests([&](ImageEngine& engine) { return broadcastSplit(engine, parts.targets()); });
}

TEST(BroadcastCombine, UndoesASplit) {
    for (const int32_t factor : {2, 4}) {
        const Picture picture = Picture::random(12, 8, factor);
        Parts parts(factor * factor, 12 / factor, 8 / factor);
        ASSERT_EQ(split(picture, parts), kStatusOk);
        Picture whole(12, 8);
        ASSERT_EQ(broadcastCombine(parts.sources(), targetOf(whole)), kStatusOk);
        EXPECT_EQ(whole, picture);
    }
}

TEST(BroadcastCombine, MultipliesTheFirstPartsSize) {
    ImageInfo whole;
    ASSERT_EQ(broadcastWholeSize(Parts(16, 3, 5).sources(), whole), kStatusOk);
    EXPECT_EQ(whole.width, 12);
    EXPECT_EQ(whole.height, 20);
    EXPECT_EQ(whole.rowBytes, 48);
}

TEST(BroadcastCombine, RefusesWrongCountsAndSizesAndWhatIsNoImage) {
    ImageInfo whole;
    for (const int32_t count : {0, 1, 3, 5, 15, 17})
        EXPECT_EQ(broadcastWholeSize(Parts(count, 2, 2).sources(), whole), kStatusRefused) << count;

    Parts uneven(4, 2, 2);
    uneven.pictures[3] = Picture(2, 1);
    EXPECT_EQ(broadcastWholeSize(uneven.sources(), whole), kStatusRefused);

    const Parts good(4, 2, 2);
    std::vector<SecondImage> sources = good.sources();
    sources[2] = {};
    EXPECT_EQ(broadcastWholeSize(sources, whole), kStatusRefused);
    std::ranges::fill(sources, SecondImage{});
    EXPECT_EQ(broadcastWholeSize(sources, whole), kStatusRefused);
}

TEST(BroadcastCombine, RefusesAWholeTooWideToDescribe) {
    const Parts parts(4, 1, 1);
    std::vector<SecondImage> sources = parts.sources();
    for (SecondImage& source : sources) source.info.width = 1 << 28;
    ImageInfo whole;
    EXPECT_EQ(broadcastWholeSize(sources, whole), kStatusRefused);
}

TEST(BroadcastCombine, RefusesAWholeOfAnotherSize) {
    const Parts parts(4, 2, 2);
    Picture whole(4, 3);
    EXPECT_EQ(broadcastCombine(parts.sources(), targetOf(whole)), kStatusRefused);
}

}  // namespace
}  // namespace krl
