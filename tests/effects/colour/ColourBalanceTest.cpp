#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(ColourBalance, MultipliesEachChannelByItsFactor) {
    expectIdentity([](ImageEngine& e) { return colourBalance(e, 1.0f, 1.0f, 1.0f); });
    EXPECT_EQ(onePixel(50, 60, 70).after([](ImageEngine& e) { return colourBalance(e, 2.0f, 1.0f, 0.5f); }),
              onePixel(25, 60, 140));
    EXPECT_EQ(onePixel(50, 60, 200).after([](ImageEngine& e) { return colourBalance(e, 2.0f, 1.0f, 1.0f); }),
              onePixel(50, 60, 255));
}

TEST(ColourBalance, TakesAnyFactor) {
    EXPECT_EQ(onePixel(50, 0, 70).after(
                  [](ImageEngine& e) { return colourBalance(e, kNotANumber, kInfinity, -kInfinity); }),
              onePixel(0, 0, 0));
    EXPECT_EQ(
        onePixel(50, 1, 70).after([](ImageEngine& e) { return colourBalance(e, -1.0f, kInfinity, 1e30f); }),
        onePixel(255, 255, 0));
}

}  // namespace
}  // namespace krl::test
