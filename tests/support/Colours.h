#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

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

/// All colours of one red, 256 by 256.
inline Picture colourPlane(int red) {
    Picture plane(256, 256);
    for (int green = 0; green < 256; ++green)
        for (int blue = 0; blue < 256; ++blue)
            plane.at(blue, green) = {uint8_t(blue), uint8_t(green), uint8_t(red), uint8_t(blue ^ green)};
    return plane;
}

/// Reds whose planes between them hold all colours there are; fewer where sanitizers make it slow.
inline std::vector<int> allReds() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int step = 51;
#else
    constexpr int step = 1;
#endif
    std::vector<int> reds;
    for (int red = 0; red < 256; red += step) reds.push_back(red);
    return reds;
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
