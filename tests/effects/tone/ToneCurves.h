#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "krlimage/tone.h"
#include "support/Effects.h"

namespace krl::test {

inline constexpr auto kRGB = ChannelTarget::RGB;
inline constexpr auto kAlpha = ChannelTarget::Alpha;

/// What an effect on `RGB` makes of each grey level.
inline std::vector<int> curveOf(const Effect& effect) {
    const Picture result = Picture::ramp().after(effect);
    std::vector<int> curve;
    for (const Pixel& p : result.pixels()) {
        EXPECT_EQ(p.blue, p.green);
        EXPECT_EQ(p.blue, p.red);
        EXPECT_EQ(p.alpha, 255);
        curve.push_back(p.blue);
    }
    return curve;
}

/// Expects that the effect with `RGB` leaves alpha, with `Alpha` leaves colour, and treats the bytes
/// alike.
inline void expectTargetsKeptApart(const std::function<Status(ImageEngine&, ChannelTarget)>& effect) {
    const Picture source = Picture::random(29, 13, 4);
    const Picture colour = source.after([&](ImageEngine& e) { return effect(e, kRGB); });
    const Picture alpha = source.after([&](ImageEngine& e) { return effect(e, kAlpha); });
    EXPECT_TRUE(sameAlpha(colour, source));
    EXPECT_TRUE(sameColour(alpha, source));
    EXPECT_FALSE(sameColour(colour, source));
    EXPECT_FALSE(sameAlpha(alpha, source));
}

}  // namespace krl::test
