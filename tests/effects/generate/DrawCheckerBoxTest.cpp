#include <gtest/gtest.h>

#include <limits>

#include "krlimage/generate.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

constexpr Colour kOne{10, 20, 30}, kTwo{40, 50, 60};

void expectChecker(const Picture& source, int32_t size, int32_t tileSide) {
    const Picture result = source.after([=](ImageEngine& e) { return drawCheckerBox(e, size, kOne, kTwo); });
    for (int32_t y = 0; y < source.height(); ++y)
        for (int32_t x = 0; x < source.width(); ++x) {
            const Colour c = (x / tileSide + y / tileSide) % 2 == 0 ? kOne : kTwo;
            const Pixel expected{c.blue(), c.green(), c.red(), source.at(x, y).alpha};
            ASSERT_EQ(result.at(x, y), expected) << x << ' ' << y << " of size " << size;
        }
}

TEST(DrawCheckerBox, TilesFromTheTopLeftAndKeepsAlpha) {
    for (const int32_t size : {1, 2, 3, 5, 16, 17, 1000}) expectChecker(Picture::random(17, 11), size, size);
    expectChecker(Picture::random(1, 9), 2, 2);
    expectChecker(Picture::random(9, 1), 2, 2);
}

TEST(DrawCheckerBox, CountsASizeBelowOneAsOne) {
    for (const int32_t size : {0, -1, std::numeric_limits<int32_t>::min()})
        expectChecker(Picture::random(5, 4), size, 1);
}

TEST(DrawCheckerBox, DrawsOneTileForAHugeSize) {
    expectChecker(Picture::random(5, 4), std::numeric_limits<int32_t>::max(), 1000);
}

TEST(DrawCheckerBox, SameForAnyBandsAndNeedsAnImage) {
    const auto effect = [](ImageEngine& e) { return drawCheckerBox(e, 2, kOne, kTwo); };
    test::expectSameForAnyBands(effect);
    test::expectStateTests(effect);
}

}  // namespace
}  // namespace krl
