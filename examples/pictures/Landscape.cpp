#include "Scenes.h"

/// A mountain lake at sunset: tones from the sun's disc to the dark of the firs.
namespace krl::paint {

namespace {

constexpr double kWidth = 960, kHeight = 640;
constexpr double kSunX = 492, kSunY = 238, kWater = 404, kMeadow = 540;

Light skyLight(double x, double y) {
    const Light zenith = light(0x24467f), upper = light(0x5b83b8), low = light(0xe9b98d),
                rim = light(0xffd9a0);
    const double t = y / kWater;
    Light sky = t < 0.55 ? mix(zenith, upper, smooth(0, 0.55, t)) : mix(upper, low, smooth(0.5, 0.9, t));
    sky = mix(sky, rim, smooth(0.75, 1.05, t) * 0.7);
    const double d = std::hypot((x - kSunX) * 0.9, y - kSunY);
    sky = sky + light(0xffb060) * (0.75 * std::exp(-d / 110)) + light(0xffe8c0) * (0.55 * std::exp(-d / 34));
    return sky + Light{1, 0.96, 0.86} * (smooth(21, 17, d) * 1.2);
}

Light cloudedSky(double x, double y) {
    const Light sky = skyLight(x, y);
    const double squash = 1 + 2.6 * (y / kWater);
    const double u = x / 210, v = y * squash / 120;
    const double density = smooth(0.02, 0.34, fractal(u, v, 11, 6) + 0.10 * std::sin(y / 37));
    const double lit = unit(0.5 + 1.9 * (fractal(u, v, 11, 6) - fractal(u - 0.05, v - 0.10, 11, 6)));
    const double nearSun = std::exp(-std::hypot(x - kSunX, y - kSunY) / 260);
    const Light shade = mix(light(0x6f7f9e), light(0xb07a6a), smooth(0.3, 0.95, y / kWater));
    const Light bright = mix(light(0xf3e6dc), light(0xffc27a), smooth(0.35, 1.0, y / kWater));
    const Light cloud = mix(shade, bright, lit) + light(0xff9a4a) * (0.35 * nearSun);
    return mix(sky, cloud, density * smooth(0.98, 0.72, y / kWater) * 0.85);
}

/// Row of a ridge at column `x`.
double ridge(double x, double base, double height, double span, uint32_t seed) {
    double sum = 0, strength = 0.5, u = x / span;
    for (int i = 0; i < 6; ++i, strength *= 0.48, u = u * 2.03 + 3.7)
        sum += strength * (1 - 2 * std::fabs(noise(u, 0.5, seed + uint32_t(i))));
    return base - height * (0.35 + sum);
}

Light mountainside(double x, double y, double top, const Light& dark, const Light& bright, uint32_t seed,
                   double snow) {
    const double depth = y - top;
    const double slope = fractal(x / 34 + depth / 90, depth / 26, seed + 20, 5);
    const double facing = unit(0.5 + 2.1 * slope + (x < kSunX ? 0.10 : -0.16));
    Light rock = mix(dark, bright, facing);
    const double snowLine = snow * (46 + 30 * fractal(x / 40, 0.2, seed + 40, 4));
    return mix(rock, mix(light(0x93a4c4), light(0xffe4c8), facing),
               smooth(snowLine, snowLine * 0.4, depth + 26 * slope) * (snow > 0));
}

/// Everything above the water.
Light farScene(double x, double y) {
    struct Range {
        double base, height, span;
        uint32_t seed;
        uint32_t dark, bright;
        double haze, snow;
    };
    static const Range ranges[] = {
        {360, 118, 330, 51, 0x5a6c93, 0xb7a4a6, 0.58, 1.0},
        {388, 92, 250, 61, 0x3f5069, 0x9a8273, 0.36, 0.6},
        {404, 52, 180, 71, 0x2b3d40, 0x6d6a4c, 0.18, 0.0},
    };
    Light seen = cloudedSky(x, y);
    for (const Range& range : ranges) {
        const double top = ridge(x, range.base, range.height, range.span, range.seed);
        const Light haze = mix(light(0xd9b49c), light(0xffcf98), std::exp(-std::fabs(x - kSunX) / 240));
        const Light side =
            mountainside(x, y, top, light(range.dark), light(range.bright), range.seed, range.snow);
        const double thick = range.haze + 0.30 * smooth(top, kWater, y);
        seen = mix(seen, mix(side, haze, thick), smooth(top - 0.8, top + 0.8, y));
    }
    // Firs along the far shore.
    const double bank = kWater - 5 - 5 * fractal(x / 60, 0.3, 81, 3);
    const double firs =
        bank - 13 * unit(0.45 + fractal(x / 7, 0.1, 83, 3)) * (0.6 + 0.4 * noise(x / 90, 1, 84));
    return mix(seen, mix(light(0x14211c), light(0x2d3a22), unit(0.5 + fractal(x / 5, y / 5, 85, 3))),
               smooth(firs - 1, firs + 1.5, y));
}

Light lake(double x, double y) {
    const double depth = (y - kWater) / (kHeight - kWater);
    const double scale = 3 + 26 * depth;
    const double ripple = fractal(x / (scale * 5), (y - kWater) / (scale * 0.5) + 40 / (depth + 0.06), 91, 4);
    const double mirrored = kWater - (y - kWater) * 0.93 + ripple * (4 + 60 * depth);
    const Light seen = farScene(x + ripple * 9 * depth * 4, std::clamp(mirrored, 0.0, kWater - 1));
    const Light tint = mix(light(0xdfe0dc), light(0x7aa6b0), smooth(0, 0.9, depth));
    Light water = mix(seen * tint, light(0x15323d), 0.16 + 0.34 * smooth(0.05, 1, depth));
    const double path = std::exp(-std::fabs(x - kSunX + ripple * 40) / (16 + 90 * depth));
    water = water + light(0xffc27a) * (path * smooth(0.10, 0.42, ripple + 0.18) * 0.85);
    return water;
}

/// A fir: how much of the point it covers, and how much light falls there.
Dab fir(double x, double y, double foot, double rootX, double tall, uint32_t seed) {
    const double up = (foot - y) / tall;
    if (up < -0.02 || up > 1) return {{}, 0};
    const double tiers = 9 + tall / 40;
    const double tier = up * tiers - std::floor(up * tiers);
    const double jag = 0.22 * noise(y / 2.2, x > rootX ? 1.5 : 7.5, seed);
    const double half = tall * 0.21 * (1 - up) * (0.62 + 0.48 * (1 - tier) + jag) + 0.6;
    const double side = (x - rootX) / half;
    const double cover = smooth(1.05, 0.92, std::fabs(side)) * smooth(0.0, 0.02, up + 0.015);
    const double lit = unit(0.30 + 0.55 * side * (rootX < kSunX ? 1 : -1) +
                            0.5 * noise(x / 3, y / 3, seed + 1) - tier * 0.2);
    return {mix(light(0x0a1512), light(0x4a4a22), lit), cover};
}

Light meadow(double x, double y, double top) {
    const double depth = unit((y - top) / 110);
    const double patch = fractal(x / 60, y / 22, 101, 5), blade = noise(x / 1.6 + y * 0.35, y / 9, 103);
    Light grass = mix(light(0x2c3a18), light(0x8a7d33), unit(0.45 + patch + 0.35 * blade - 0.35 * depth));
    grass = grass + light(0xffb45e) *
                        (0.28 * std::exp(-std::fabs(x - kSunX) / 200) * unit(0.4 + blade) * (1 - depth));
    const double speck = noise(x / 2.3, y / 2.3, 107);
    if (speck > 0.86)
        grass = mix(grass, speck > 0.93 ? light(0xd9534a) : light(0xf3e3a0), 0.8 * (1 - 0.5 * depth));
    return mix(grass, light(0x0c130b), smooth(0.35, 1.3, depth) * 0.75);
}

Light scene(double x, double y) {
    Light seen = y < kWater ? farScene(x, y) : lake(x, y);
    const double shore =
        kMeadow + 26 * fractal(x / 170, 0.7, 111, 4) - 42 * smooth(300, 0, x) - 26 * smooth(760, 960, x);
    const double tuft = shore - 5 * unit(noise(x / 1.7, 0.4, 113)) - 4 * unit(noise(x / 4.1, 0.9, 117));
    seen = mix(seen, meadow(x, y, shore), smooth(tuft - 0.7, tuft + 0.7, y));
    struct Tree {
        double x, foot, tall;
    };
    static const Tree trees[] = {{172, 520, 205}, {226, 528, 150}, {40, 530, 330},  {104, 548, 275},
                                 {858, 540, 190}, {800, 545, 120}, {914, 560, 300}, {-8, 575, 380}};
    uint32_t seed = 121;
    for (const Tree& tree : trees) {
        const Dab dab = fir(x, y, tree.foot, tree.x, tree.tall, seed += 7);
        seen = mix(seen, dab.colour, dab.cover);
    }
    return seen;
}

}  // namespace

player::Bitmap landscape() {
    return render(int32_t(kWidth), int32_t(kHeight), 2, [](double x, double y) {
        // A soft shoulder keeps the sun's glow from a hard edge.
        const auto shoulder = [](double v) {
            return v < 0.8 ? v : 0.8 + 0.2 * (1 - std::exp(-(v - 0.8) / 0.2));
        };
        const Light seen = scene(x, y);
        return Dab{{shoulder(seen.r), shoulder(seen.g), shoulder(seen.b)}, 1};
    });
}

}  // namespace krl::paint
