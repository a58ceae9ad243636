#include <gtest/gtest.h>

#include "krlimage/film.h"
#include "reference/FilmReference.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

/// Every pixel of `picture` through `change`.
template <class Change>
Picture each(Picture picture, Change&& change) {
    for (Pixel& p : picture.pixels()) p = change(p);
    return picture;
}

Picture threeStripped(const Picture& picture, int32_t red, int32_t green, int32_t blue) {
    return picture.after([=](ImageEngine& e) { return threeStripColor(e, red, green, blue); });
}

TEST(ThreeStripColor, EqualsItsStepsForAnyExpands) {
    const Picture source = Picture::random(64, 40);
    for (int32_t expand : {INT32_MIN, -300, -1, 0, 1, 100, 255, 256, 257, INT32_MAX}) {
        const int32_t other = expand == INT32_MIN ? 7 : -(expand / 2);
        const auto step = [=](Pixel p) { return reference::threeStrip(p, expand, 40, other); };
        EXPECT_EQ(threeStripped(source, expand, 40, other), each(source, step)) << expand;
    }
}

TEST(ThreeStripColor, KeepsGreysNearlyAndPrintsNothingThroughShutDyes) {
    const Picture ramp = threeStripped(Picture::ramp(), 0, 0, 0);
    for (int32_t x = 0; x < 256; ++x) {
        EXPECT_EQ(ramp.at(x, 0).blue, x * 510 / 512) << x;
        EXPECT_EQ(ramp.at(x, 0).red, ramp.at(x, 0).blue);
    }
    EXPECT_EQ(threeStripped(Picture::ramp(), 256, 256, 256), Picture(256, 1));
    expectStateTests([](ImageEngine& e) { return threeStripColor(e, 0, 0, 0); });
    expectSameForAnyBands([](ImageEngine& e) { return threeStripColor(e, 9, 50, 120); });
}

}  // namespace
}  // namespace krl::test
