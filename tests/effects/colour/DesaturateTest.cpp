#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(Desaturate, TakesThePlainMean) {
    EXPECT_EQ(onePixel(10, 20, 32).after([](ImageEngine& e) { return desaturate(e); }), onePixel(20, 20, 20));
    EXPECT_EQ(onePixel(255, 255, 254).after([](ImageEngine& e) { return desaturate(e); }),
              onePixel(254, 254, 254));
}

}  // namespace
}  // namespace krl::test
