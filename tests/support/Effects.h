#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "support/Picture.h"

/// What tests of effects have in common.
namespace krl::test {

inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
inline constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

using Effect = std::function<Status(ImageEngine&)>;

/// A picture of one pixel, whose alpha no effect on colour may change.
inline Picture onePixel(uint8_t blue, uint8_t green, uint8_t red) {
    return Picture(1, {{blue, green, red, 77}});
}

inline void expectIdentity(const Effect& effect) {
    const Picture source = Picture::random(23, 19, 3);
    EXPECT_EQ(source.after(effect), source);
}

}  // namespace krl::test
