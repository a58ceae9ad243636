#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(AmbientLight, TakesAwayWhatTheLightLacks) {
    const auto warm = [](ImageEngine& e) { return ambientLight(e, Colour(255, 200, 100), 20); };
    EXPECT_EQ(onePixel(200, 200, 200).after(warm), onePixel(65, 165, 200));
    EXPECT_EQ(onePixel(100, 30, 0).after(warm), onePixel(0, 0, 0));
}

TEST(AmbientLight, ChangesNothingUnderWhiteAndTurnsBlackUnderBlack) {
    for (int32_t intensity : {-5, 0, 100, 255, 1000}) {
        expectIdentity([=](ImageEngine& e) { return ambientLight(e, Colour(255, 255, 255), intensity); });
    }
    expectIdentity([](ImageEngine& e) { return ambientLight(e, Colour(0, 0, 0), 255); });
    const Picture dark =
        Picture::random(6, 6).after([](ImageEngine& e) { return ambientLight(e, Colour(0, 0, 0), 0); });
    EXPECT_TRUE(sameColour(dark, Picture(6, 6, {0, 0, 0, 0})));
}

TEST(AmbientLight, GivesTheSameOnItsWidePath) {
    const Picture source = Picture::random(37, 11, 12);
    for (int32_t intensity : {0, 33, 255}) {
        const auto effect = [=](ImageEngine& e) { return ambientLight(e, Colour(250, 90, 13), intensity); };
        EXPECT_EQ(source.after([&](ImageEngine& e) {
            e.selectInstructionSet(2);
            const Status status = effect(e);
            e.selectInstructionSet(3);
            return status;
        }),
                  source.after(effect));
    }
}

}  // namespace
}  // namespace krl::test
