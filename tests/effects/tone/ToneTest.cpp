#include <gtest/gtest.h>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

/// Every effect of the family that works in bands.
const Effect kBanded[] = {
    [](ImageEngine& e) { return brightness(e, 30, kRGB); },
    [](ImageEngine& e) { return contrast(e, 1.3f, kAlpha); },
    [](ImageEngine& e) { return gamma(e, 1.1f, kRGB); },
    [](ImageEngine& e) { return invert(e, kRGB); },
    [](ImageEngine& e) { return levels(e, 10, 1.1f, 245, 0, 255, LevelsChannel::Green); },
    [](ImageEngine& e) { return levels(e, 10, 1.1f, 245, 0, 255, LevelsChannel::None); },
    [](ImageEngine& e) { return posterise(e, 5, kRGB); },
    [](ImageEngine& e) { return posterise(e, 0, kRGB); },
    [](ImageEngine& e) { return solarise(e, kRGB); },
    [](ImageEngine& e) { return superContrast(e, 20, 180, kRGB); },
    [](ImageEngine& e) { return threshold(e, 120, kRGB); },
    [](ImageEngine& e) { return threshold(e, 120, kAlpha); },
    [](ImageEngine& e) { return exposure(e, 1.0f, 0.1f, 1.1f); },
};

TEST(Tone, GiveTheSameBytesForAnyBands) {
    for (const Effect& effect : kBanded) expectSameForAnyBands(effect);
    expectSameForAnyBands([](ImageEngine& e) { return mediumTones(e, 90); });
}

TEST(Tone, TestTheStateFirst) {
    for (const Effect& effect : kBanded) expectStateTests(effect);
}

}  // namespace
}  // namespace krl::test
