#include <gtest/gtest.h>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(Invert, ComplementsItsTargetAndUndoesItself) {
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return invert(e, kRGB); }),
              Picture(1, {{255, 155, 5, 9}}));
    EXPECT_EQ(Picture(1, {{0, 100, 250, 9}}).after([](ImageEngine& e) { return invert(e, kAlpha); }),
              Picture(1, {{0, 100, 250, 246}}));
    expectIdentity([](ImageEngine& e) {
        const Status first = invert(e, kRGB);
        return first ? first : invert(e, kRGB);
    });
}

}  // namespace
}  // namespace krl::test
