#include <gtest/gtest.h>

#include "core/LookupTables.h"
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

TEST(Sepia, TintsByTheCurvesOfTheSharedTables) {
    const Picture tinted = Picture::ramp().after(sepia);
    const LookupTables& t = sharedTables();
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(tinted.at(i, 0),
                  (Pixel{static_cast<uint8_t>(t.sepiaBlue[i]), static_cast<uint8_t>(t.sepiaGreen[i]),
                         static_cast<uint8_t>(t.sepiaRed[i]), 255}));
}

}  // namespace
}  // namespace krl::test
