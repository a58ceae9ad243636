#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

const Effect kAll[] = {
    [](ImageEngine& e) { return ambientLight(e, Colour(200, 100, 50), 10); },
    [](ImageEngine& e) { return colourBalance(e, 1.2f, 0.9f, 1.0f); },
    [](ImageEngine& e) { return colourTemperature(e, 3200); },
    [](ImageEngine& e) { return desaturate(e); },
    [](ImageEngine& e) { return desaturatePro(e, 0.3f, 0.6f, 0.1f, 200, true); },
    [](ImageEngine& e) { return rgbChannelSwap(e, ChannelOrder::GBR, 180); },
    [](ImageEngine& e) { return rgbChannelSwap(e, ChannelOrder::RGB, 180); },
    [](ImageEngine& e) { return saturation(e, 1.4f); },
    [](ImageEngine& e) { return sepia(e); },
};

TEST(Colour, GiveTheSameBytesForAnyBands) {
    for (const Effect& effect : kAll) expectSameForAnyBands(effect);
}

TEST(Colour, TestTheStateFirst) {
    for (const Effect& effect : kAll) expectStateTests(effect);
}

TEST(Colour, NeverTouchAlpha) {
    const Picture source = Picture::random(41, 23, 15);
    for (const Effect& effect : kAll) EXPECT_TRUE(sameAlpha(source.after(effect), source));
}

}  // namespace
}  // namespace krl::test
