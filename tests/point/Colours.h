#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "support/Picture.h"

namespace krl::test {

/// Colours for comparison with a reference: a dense net over all of them with every grey, with alpha
/// of every level. Built with sanitizers, the net is wider.
inline Picture colourNet() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int step = 15;
#else
    constexpr int step = 3;
#endif
    std::vector<Pixel> colours;
    for (int red = 0; red < 256; red += step)
        for (int green = 0; green < 256; green += step)
            for (int blue = 0; blue < 256; blue += step)
                colours.push_back({uint8_t(blue), uint8_t(green), uint8_t(red), uint8_t(red ^ green ^ blue)});
    for (int grey = 0; grey < 256; ++grey)
        colours.push_back({uint8_t(grey), uint8_t(grey), uint8_t(grey), uint8_t(255 - grey)});
    Picture net(int32_t(colours.size()), 1);
    net.pixels() = colours;
    return net;
}

/// Expects of every colour of `source` that the effect makes of it what `reference` says.
inline void expectEach(const Picture& source, const std::function<Status(ImageEngine&)>& effect,
                       const std::function<Pixel(Pixel)>& reference) {
    const Picture result = source.after(effect);
    for (size_t i = 0; i < source.pixels().size(); ++i)
        ASSERT_EQ(result.pixels()[i], reference(source.pixels()[i]))
            << "from " << testing::PrintToString(source.pixels()[i]);
}

}  // namespace krl::test
