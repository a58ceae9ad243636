#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>

#include "player/pictures/Picture.h"

/// What the sample pictures are painted with: light as doubles on 0..1, noise, and soft shapes.
namespace krl::paint {

struct Light {
    double r = 0, g = 0, b = 0;

    Light operator+(Light o) const { return {r + o.r, g + o.g, b + o.b}; }
    Light operator*(double k) const { return {r * k, g * k, b * k}; }
    Light operator*(Light o) const { return {r * o.r, g * o.g, b * o.b}; }
};

/// From 0xRRGGBB.
inline Light light(uint32_t hex) {
    return {double(hex >> 16 & 255) / 255, double(hex >> 8 & 255) / 255, double(hex & 255) / 255};
}

inline double unit(double v) { return std::clamp(v, 0.0, 1.0); }
inline Light mix(Light a, Light b, double t) { return a * (1 - unit(t)) + b * unit(t); }
inline double mix(double a, double b, double t) { return a + (b - a) * unit(t); }
/// 0 below `from`, 1 above `to`, smooth between.
inline double smooth(double from, double to, double v) {
    const double t = unit((v - from) / (to - from));
    return t * t * (3 - 2 * t);
}

/// -1..1 at a lattice point.
inline double lattice(int32_t x, int32_t y, uint32_t seed) {
    uint32_t n = uint32_t(x) * 0x8da6b343u ^ uint32_t(y) * 0xd8163841u ^ seed * 0xcb1ab31fu;
    n = (n ^ n >> 13) * 0x5bd1e995u;
    n ^= n >> 15;
    return double(n) / 2147483647.5 - 1;
}

/// Smooth noise between lattice points.
inline double noise(double x, double y, uint32_t seed) {
    const double fx = std::floor(x), fy = std::floor(y);
    const auto ix = int32_t(fx), iy = int32_t(fy);
    const double u = smooth(0, 1, x - fx), v = smooth(0, 1, y - fy);
    return mix(mix(lattice(ix, iy, seed), lattice(ix + 1, iy, seed), u),
               mix(lattice(ix, iy + 1, seed), lattice(ix + 1, iy + 1, seed), u), v);
}

/// Octaves of noise, each twice as fine and half as strong.
inline double fractal(double x, double y, uint32_t seed, int octaves) {
    double sum = 0, strength = 0.5;
    for (int i = 0; i < octaves; ++i, strength *= 0.5, x = x * 2 + 17.3, y = y * 2 + 5.1)
        sum += strength * noise(x, y, seed + uint32_t(i));
    return sum;
}

/// Colour and coverage of a point.
struct Dab {
    Light colour;
    double cover = 1;
};

inline Dab over(Dab below, Light colour, double cover) {
    cover = unit(cover);
    const double whole = cover + below.cover * (1 - cover);
    if (whole <= 0) return below;
    return {(colour * cover + below.colour * (below.cover * (1 - cover))) * (1 / whole), whole};
}

/// Renders `at(x, y)`, in pixels with the middle of a pixel at one half, with `samples` by `samples`
/// points a pixel.
inline player::Bitmap render(int32_t width, int32_t height, int samples,
                             const std::function<Dab(double, double)>& at) {
    player::Bitmap picture{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), nullptr};
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            Light sum;
            double cover = 0;
            for (int i = 0; i < samples * samples; ++i) {
                const Dab dab = at(x + (i % samples + 0.5) / samples, y + (i / samples + 0.5) / samples);
                sum = sum + dab.colour * dab.cover;
                cover += dab.cover;
            }
            const Light colour = cover > 0 ? sum * (1 / cover) : Light{};
            const double grain = lattice(x, y, 99) * 0.004;
            const auto byte = [&](double v) { return uint8_t(unit(v + grain) * 255 + 0.5); };
            picture.row(y)[x] = {byte(colour.b), byte(colour.g), byte(colour.r),
                                 uint8_t(unit(cover / (samples * samples)) * 255 + 0.5)};
        }
    }
    return picture;
}

}  // namespace krl::paint
