#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(ColourTemperature, WarmsAndCools) {
    EXPECT_EQ(onePixel(100, 100, 100).after([](ImageEngine& e) { return colourTemperature(e, 4500); }),
              onePixel(91, 97, 106));
    EXPECT_EQ(onePixel(100, 100, 100).after([](ImageEngine& e) { return colourTemperature(e, 10000); }),
              onePixel(188, 97, 83));
    EXPECT_EQ(onePixel(0, 0, 0).after([](ImageEngine& e) { return colourTemperature(e, 4500); }),
              onePixel(0, 0, 0));
}

TEST(ColourTemperature, TurnsBlackWhereThereIsNoLight) {
    for (float kelvin : {0.0f, kNotANumber})
        EXPECT_EQ(onePixel(9, 99, 255).after([=](ImageEngine& e) { return colourTemperature(e, kelvin); }),
                  onePixel(0, 0, 0));
}

}  // namespace
}  // namespace krl::test
