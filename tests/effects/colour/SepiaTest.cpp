#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(Sepia, TintsByTheMeanAndLiftsBlack) {
    EXPECT_EQ(onePixel(0, 0, 0).after([](ImageEngine& e) { return sepia(e); }), onePixel(30, 30, 53));
    EXPECT_EQ(onePixel(90, 100, 110).after([](ImageEngine& e) { return sepia(e); }), onePixel(67, 120, 153));
    EXPECT_EQ(onePixel(255, 255, 255).after([](ImageEngine& e) { return sepia(e); }),
              onePixel(222, 255, 255));
}

}  // namespace
}  // namespace krl::test
