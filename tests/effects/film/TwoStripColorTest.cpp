#include <gtest/gtest.h>

#include "core/Faults.h"
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

TEST(TwoStripColor, LeavesTheGreenChannelWhateverItsNumbers) {
    const Picture source = Picture::random(120, 60);
    for (int32_t expand : {0, 255, -1, 256})
        EXPECT_EQ(source.after([=](ImageEngine& e) { return twoStripColor(e, expand, expand, expand); }, 3),
                  each(source, reference::twoStrip));
    EXPECT_EQ(each(Picture(1, 1, {9, 77, 200, 3}), reference::twoStrip).at(0, 0), (Pixel{0, 77, 0, 3}));
}

TEST(TwoStripColor, PrintsBlackAsBlack) {
    const Picture black(2, 2, {0, 0, 0, 17});
    EXPECT_EQ(black.after([](ImageEngine& e) { return twoStripColor(e, 0, 0, 0); }), black);
    expectStateTests([](ImageEngine& e) { return twoStripColor(e, 0, 0, 0); });
}

TEST(TwoStripColor, NeedsNoThreads) {
    Picture picture = Picture::random(4, 4);
    faults().threads = faults().tasks = 0;
    EXPECT_EQ(picture.apply([](ImageEngine& e) { return twoStripColor(e, 0, 0, 0); }, 4), kStatusOk);
    faults().threads = faults().tasks = -1;
}

}  // namespace
}  // namespace krl::test
