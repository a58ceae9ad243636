#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "effects/colour/BlackBody.h"
#include "effects/colour/ColourEffects.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

using Effect = std::function<Status(ImageEngine&)>;

Picture one(uint8_t blue, uint8_t green, uint8_t red) { return Picture(1, {{blue, green, red, 77}}); }

void expectIdentity(const Effect& effect) {
    const Picture source = Picture::random(23, 19, 3);
    EXPECT_EQ(source.after(effect), source);
}

TEST(AmbientLight, TakesAwayWhatTheLightLacks) {
    const auto warm = [](ImageEngine& e) { return ambientLight(e, Colour(255, 200, 100), 20); };
    EXPECT_EQ(one(200, 200, 200).after(warm), one(65, 165, 200));
    EXPECT_EQ(one(100, 30, 0).after(warm), one(0, 0, 0));
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

TEST(ColourBalance, MultipliesEachChannelByItsFactor) {
    expectIdentity([](ImageEngine& e) { return colourBalance(e, 1.0f, 1.0f, 1.0f); });
    EXPECT_EQ(one(50, 60, 70).after([](ImageEngine& e) { return colourBalance(e, 2.0f, 1.0f, 0.5f); }),
              one(25, 60, 140));
    EXPECT_EQ(one(50, 60, 200).after([](ImageEngine& e) { return colourBalance(e, 2.0f, 1.0f, 1.0f); }),
              one(50, 60, 255));
}

TEST(ColourBalance, TakesAnyFactor) {
    EXPECT_EQ(one(50, 0, 70).after(
                  [](ImageEngine& e) { return colourBalance(e, kNotANumber, kInfinity, -kInfinity); }),
              one(0, 0, 0));
    EXPECT_EQ(one(50, 1, 70).after([](ImageEngine& e) { return colourBalance(e, -1.0f, kInfinity, 1e30f); }),
              one(255, 255, 0));
}

TEST(BlackBody, ObserverHasThePublishedColumnSums) {
    double x = 0, y = 0, z = 0;
    for (const ObserverRow& row : kObserver) x += row.x, y += row.y, z += row.z;
    EXPECT_NEAR(x, 21.3714, 1e-9);
    EXPECT_NEAR(y, 21.3711, 1e-9);
    EXPECT_NEAR(z, 21.3715, 1e-9);
    EXPECT_EQ(kObserver[35].y, 1.0);  // 555 nm
    EXPECT_EQ(kObserver[80].x, 0.0);
}

TEST(BlackBody, GoesFromRedThroughNeutralToBlue) {
    const LightColour warm = blackBodyColour(2856), neutral = blackBodyColour(4900),
                      cold = blackBodyColour(10000);
    EXPECT_GT(warm.red, warm.green);
    EXPECT_GT(warm.green, warm.blue);
    EXPECT_NEAR(neutral.red, 1.0, 0.03);
    EXPECT_NEAR(neutral.green, 1.0, 0.03);
    EXPECT_NEAR(neutral.blue, 1.0, 0.03);
    EXPECT_GT(cold.blue, cold.green);
    EXPECT_GT(cold.green, cold.red);
}

TEST(ColourTemperature, WarmsAndCools) {
    EXPECT_EQ(one(100, 100, 100).after([](ImageEngine& e) { return colourTemperature(e, 4500); }),
              one(91, 97, 106));
    EXPECT_EQ(one(100, 100, 100).after([](ImageEngine& e) { return colourTemperature(e, 10000); }),
              one(188, 97, 83));
    EXPECT_EQ(one(0, 0, 0).after([](ImageEngine& e) { return colourTemperature(e, 4500); }), one(0, 0, 0));
}

TEST(ColourTemperature, TurnsBlackWhereThereIsNoLight) {
    for (float kelvin : {0.0f, kNotANumber})
        EXPECT_EQ(one(9, 99, 255).after([=](ImageEngine& e) { return colourTemperature(e, kelvin); }),
                  one(0, 0, 0));
}

TEST(Desaturate, TakesThePlainMean) {
    EXPECT_EQ(one(10, 20, 32).after([](ImageEngine& e) { return desaturate(e); }), one(20, 20, 20));
    EXPECT_EQ(one(255, 255, 254).after([](ImageEngine& e) { return desaturate(e); }), one(254, 254, 254));
}

TEST(Sepia, TintsByTheMeanAndLiftsBlack) {
    EXPECT_EQ(one(0, 0, 0).after([](ImageEngine& e) { return sepia(e); }), one(30, 30, 53));
    EXPECT_EQ(one(90, 100, 110).after([](ImageEngine& e) { return sepia(e); }), one(67, 120, 153));
    EXPECT_EQ(one(255, 255, 255).after([](ImageEngine& e) { return sepia(e); }), one(222, 255, 255));
}

TEST(DesaturatePro, MixesByOpacityOf256) {
    const auto grey = [](int32_t opacity) {
        return [=](ImageEngine& e) { return desaturatePro(e, 0.5f, 0.25f, 0.25f, opacity, false); };
    };
    expectIdentity(grey(0));
    EXPECT_EQ(one(100, 100, 200).after(grey(256)), one(150, 150, 150));
    // Just short of it: 50 * 255 / 256 is 49, and -50 * 255 / 256 rounds down to -50.
    EXPECT_EQ(one(100, 100, 200).after(grey(255)), one(149, 149, 150));
}

TEST(DesaturatePro, DividesByTheWeightsWhereAsked) {
    EXPECT_EQ(one(60, 60, 60).after([](ImageEngine& e) { return desaturatePro(e, 1, 1, 1, 256, true); }),
              one(60, 60, 60));
    EXPECT_EQ(one(60, 60, 60).after([](ImageEngine& e) { return desaturatePro(e, 1, 1, 1, 256, false); }),
              one(180, 180, 180));
    EXPECT_EQ(one(60, 60, 60).after([](ImageEngine& e) { return desaturatePro(e, 0, 0, 0, 128, true); }),
              one(30, 30, 30));
}

TEST(DesaturatePro, FollowsItsStepsForEveryColour) {
    struct Case {
        float red, green, blue;
        int32_t opacity;
    };
    for (const Case& c :
         {Case{0.3f, 0.59f, 0.11f, 256}, Case{0.333f, 0.333f, 0.334f, 200}, Case{2, -1, 0.7f, -90},
          Case{1e8f, 1e8f, 3, 256}, Case{kInfinity, 1, 1, 255}, Case{kInfinity, -kInfinity, 0, 77},
          Case{kNotANumber, 1, 1, 256}, Case{0.1f, 0.1f, 0.1f, 2147483647}})
        for (bool equalise : {false, true})
            expectEach(
                colourNet(),
                [=](ImageEngine& e) { return desaturatePro(e, c.red, c.green, c.blue, c.opacity, equalise); },
                [=](Pixel p) {
                    return reference::desaturatePro(p, c.red, c.green, c.blue, c.opacity, equalise);
                });
}

TEST(RgbChannelSwap, PutsEveryOrderInPlace) {
    const auto swapped = [](ChannelOrder order) {
        return one(10, 20, 30).after([=](ImageEngine& e) { return rgbChannelSwap(e, order, 256); });
    };
    EXPECT_EQ(swapped(ChannelOrder::RGB), one(10, 20, 30));
    EXPECT_EQ(swapped(ChannelOrder::RBG), one(20, 10, 30));
    EXPECT_EQ(swapped(ChannelOrder::GBR), one(30, 10, 20));
    EXPECT_EQ(swapped(ChannelOrder::GRB), one(10, 30, 20));
    EXPECT_EQ(swapped(ChannelOrder::BRG), one(20, 30, 10));
    EXPECT_EQ(swapped(ChannelOrder::BGR), one(30, 20, 10));
}

TEST(RgbChannelSwap, MixesByOpacityAndWraps) {
    const auto mixed = [](int32_t opacity) {
        return one(0, 7, 255).after(
            [=](ImageEngine& e) { return rgbChannelSwap(e, ChannelOrder::BGR, opacity); });
    };
    EXPECT_EQ(mixed(0), one(0, 7, 255));
    EXPECT_EQ(mixed(128), one(127, 7, 127));
    EXPECT_EQ(mixed(512), one(254, 7, 1));  // 510 and -255, as bytes
}

TEST(Saturation, KeepsAtOneAndGreysByTheBrightestAtNone) {
    const Picture source = Picture::random(50, 40, 14);
    const Picture same = source.after([](ImageEngine& e) { return saturation(e, 1.0f); });
    for (size_t i = 0; i < source.pixels().size(); ++i)
        for (size_t channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(same.pixels()[i][channel], source.pixels()[i][channel], 1);
    EXPECT_EQ(one(10, 80, 200).after([](ImageEngine& e) { return saturation(e, 0.0f); }), one(200, 200, 200));
    EXPECT_EQ(one(100, 150, 200).after([](ImageEngine& e) { return saturation(e, 100.0f); }),
              one(0, 100, 200));
}

TEST(Saturation, FollowsItsStepsForEveryColour) {
    for (float factor :
         {0.0f, 0.1f, 0.75f, 1.0f, 1.5f, 3.0f, 1e30f, 1e-40f, -1.0f, kInfinity, -kInfinity, kNotANumber})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return saturation(e, factor); },
            [=](Pixel p) { return reference::saturation(p, factor); });
}

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

TEST(ColourEffects, GiveTheSameBytesForAnyBands) {
    for (const Effect& effect : kAll) expectSameForAnyBands(effect);
}

TEST(ColourEffects, TestTheStateFirst) {
    for (const Effect& effect : kAll) expectStateTests(effect);
}

TEST(ColourEffects, NeverTouchAlpha) {
    const Picture source = Picture::random(41, 23, 15);
    for (const Effect& effect : kAll) EXPECT_TRUE(sameAlpha(source.after(effect), source));
}

}  // namespace
}  // namespace krl::test
