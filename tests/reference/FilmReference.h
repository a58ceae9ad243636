#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/Random.h"
#include "kernels/colour/ColourSpace.h"
#include "krlimage/pixel.h"

/// The film looks and noises told slowly, pixel by pixel and step by step.
namespace krl::reference {

inline int32_t limit(double value, double low, double high) {
    return truncate(value < low ? low : value > high ? high : value);
}

/// Saturation of one pixel times `factor`, by the hue space, channels truncated.
inline Pixel saturated(Pixel p, float factor, const LookupTables& tables) {
    if (factor == 1.0f) return p;
    const float* unit = tables.unitFromByte;
    Hsv hsv = rgbToHsv(unit[p.red], unit[p.green], unit[p.blue]);
    hsv.saturation = std::clamp(static_cast<float>(double{hsv.saturation} * factor), 0.0f, 1.0f);
    const auto byte = [](double channel) { return static_cast<uint8_t>(truncate(channel * 255.0)); };
    if (hsv.saturation == 0.0f) {
        const uint8_t grey = byte(hsv.value);
        return {grey, grey, grey, p.alpha};
    }
    const auto turn = static_cast<float>((hsv.hue == 360.0f ? 0.0 : double{hsv.hue}) / 60.0);
    const int32_t sector = truncate(turn);
    const double fraction = static_cast<float>(turn - double(sector)), s = hsv.saturation, v = hsv.value;
    const auto low = static_cast<float>(v * (1.0 - s));
    const auto falling = static_cast<float>(v * (1.0 - fraction * s));
    const auto rising = static_cast<float>(v * (1.0 - s * (1.0 - fraction)));
    const float top = hsv.value;
    const float channels[6][3] = {{top, rising, low},  {falling, top, low}, {low, top, rising},
                                  {low, falling, top}, {rising, low, top},  {top, low, falling}};
    const float* c = channels[sector];
    return {byte(c[2]), byte(c[1]), byte(c[0]), p.alpha};
}

inline Pixel bleached(Pixel p, int32_t opacity, float contrast, float saturation, const LookupTables& t) {
    const int32_t o = std::clamp(opacity, 0, 255);
    const int32_t c = truncate(std::clamp(contrast, 0.0f, 2.0f) * 1024.0);
    const int32_t mean = t.meanOf3[p.blue + p.green + p.red];
    const int32_t d = std::clamp(((mean - 127) * c) / 1024 + 127, 0, 255);
    for (size_t i = 0; i < 3; ++i)
        p[i] = static_cast<uint8_t>(t.scaleByte[o][t.blendOverlay[d][p[i]]] + t.scaleByte[255 - o][p[i]]);
    return saturated(p, std::clamp(saturation, 0.0f, 2.0f), t);
}

struct Night {
    float blurOpacity;
    Pixel colour;
    float colorOpacity, highlightOpacity, saturation;
    int32_t brightness;
    float contrast, gamma;
};

inline Pixel nocturnal(Pixel p, Pixel soft, const Night& night, bool withAlpha, const LookupTables& t) {
    const auto level = [](float opacity) { return truncate(std::clamp(opacity, 0.0f, 1.0f) * 255.0); };
    const int32_t bo = level(night.blurOpacity), co = level(night.colorOpacity),
                  ho = level(night.highlightOpacity);
    const int32_t c = truncate(std::clamp(night.contrast, 0.0f, 2.0f) * 1024.0);
    const double power = 1.0 / std::clamp(night.gamma, 0.0f, 2.0f);
    const auto tone = [&](int32_t i) {
        const auto bent = static_cast<float>(std::pow(double(i), power));
        return limit(127 + (bent - 127.0) * c / 1024 + std::clamp(night.brightness, -255, 255), 0, 255);
    };
    Pixel out = p;
    for (size_t i = 0; i < 3; ++i) {
        const int32_t x = p[i], s = soft[i];
        const int32_t m = (((x - s) * bo) >> 8) + s;
        const int32_t tint = (night.colour[i] * m) >> 8;
        const int32_t highlight = x < 128 ? 0 : (x - 128) * 2;
        const int32_t lit = tint + (((t.blendScreen[highlight][tint] - tint) * ho) >> 8);
        out[i] = static_cast<uint8_t>(tone((((m - lit) * co) >> 8) + lit));
    }
    out = saturated(out, std::clamp(night.saturation, 0.0f, 2.0f), t);
    if (withAlpha) out.alpha = static_cast<uint8_t>((((p.alpha - soft.alpha) * bo) >> 8) + soft.alpha);
    return out;
}

inline Pixel twoStrip(Pixel p) {
    const auto lack = [](int32_t byte) { return static_cast<float>(1.0 - byte / 255.0); };
    const float c = lack(p.red), m = lack(p.green), y = lack(p.blue);
    const float k = std::min({c, m, y});
    const float magenta = k == 1.0f ? 0.0f : static_cast<float>((double{m} - k) / (1.0 - k));
    const auto full = static_cast<float>(k + (1.0 - k));
    const auto green = static_cast<float>((1.0 - k) * magenta + k);
    const auto byte = [](float ink) {
        return static_cast<uint8_t>(limit(truncate(255.0 * (1.0 - std::min(ink, 1.0f)) + 0.5), 0, 255));
    };
    return {byte(full), byte(green), byte(full), p.alpha};
}

inline Pixel threeStrip(Pixel p, int32_t expandRed, int32_t expandGreen, int32_t expandBlue) {
    const auto density = [](int32_t i, int32_t e) {
        return i < e ? 0 : truncate((double(i) - e) * (256.0 / (256.0 - e)));
    };
    const int32_t b = p.blue, g = p.green, r = p.red;
    const int32_t sb = std::clamp(b - ((r + g) >> 1), 0, 255), sg = std::clamp(g - ((r + b) >> 1), 0, 255),
                  sr = std::clamp(r - ((g + b) >> 1), 0, 255);
    const int32_t db = density(255 - sb, expandBlue), dg = density(255 - sg, expandGreen),
                  dr = density(255 - sr, expandRed);
    return {static_cast<uint8_t>(((dr + dg) * b) >> 9), static_cast<uint8_t>(((dr + db) * g) >> 9),
            static_cast<uint8_t>(((dg + db) * r) >> 9), p.alpha};
}

/// `bandPixels` is the length of a band.
inline std::vector<Pixel> noised(std::vector<Pixel> pixels, int32_t bandPixels, float varience, int32_t seed,
                                 bool colour, bool alpha) {
    const int32_t h = truncate(varience * 1000.0), range = std::max(1, 2 * h);
    std::vector<int32_t> table(pixels.size() * 4);
    Random random(seed);
    for (int32_t& entry : table) entry = random.next() % range;
    for (size_t i = 0; i < pixels.size(); ++i) {
        const size_t band = i / size_t(bandPixels), within = i % size_t(bandPixels);
        const int32_t v = table[band * size_t(bandPixels) * 4 + within] - h;
        for (size_t c = 0; c < 3 && colour; ++c)
            pixels[i][c] = static_cast<uint8_t>(std::clamp(pixels[i][c] * (v + 1000) / 1000, 0, 255));
        if (alpha) pixels[i].alpha = static_cast<uint8_t>(std::clamp(pixels[i].alpha + v, 0, 255));
    }
    return pixels;
}

inline float noiseHash(int32_t x, int32_t y) {
    uint32_t n = uint32_t(x) + uint32_t(y) * 57u;
    n = n ^ (n << 13);
    const uint32_t m = (n * (n * n * 15731u + 789221u) + 1376312589u) & 0x7FFFFFFFu;
    return static_cast<float>(1.0 - double(m) * 9.313225746154785e-10);
}

inline float noiseMix(float a, float b, double t) {
    const double u = 1.0 - t;
    return static_cast<float>((3.0 * u - 2.0 * u * u * u) * a + (3.0 * t - 2.0 * t * t * t) * b);
}

inline float noise2(float x, float y) {
    const int32_t ix = truncate(x), iy = truncate(y);
    const double fx = double{x} - ix, fy = double{y} - iy;
    return noiseMix(noiseMix(noiseHash(ix, iy), noiseHash(ix + 1, iy), fx),
                    noiseMix(noiseHash(ix, iy + 1), noiseHash(ix + 1, iy + 1), fx), fy);
}

/// Channels in the order red, green, blue.
struct Grain {
    float frequency[3], strength[3];
    int32_t lowerBand, upperBand, seed;
    bool grey;
};

inline std::vector<Pixel> grained(std::vector<Pixel> pixels, int32_t width, const Grain& grain,
                                  const LookupTables& t) {
    Random random(grain.seed);
    int32_t offset[3], keep[3];
    float inverse[3];
    for (int c = 0; c < 3; ++c) {
        offset[c] = random.next() % 5000;
        inverse[c] = static_cast<float>(1.0 / std::max(grain.frequency[c], 1.0f));
        keep[c] = limit((1.0 - grain.strength[c]) * 255, 0, 255);
    }
    if (keep[0] == 255 && (grain.grey || (keep[1] == 255 && keep[2] == 255))) return pixels;
    for (size_t i = 0; i < pixels.size(); ++i) {
        Pixel& p = pixels[i];
        if (p.alpha == 0) continue;
        const auto x = int32_t(i % size_t(width)), y = int32_t(i / size_t(width));
        const int32_t luma = truncate(double{t.lumaBlue[p.blue]} + t.lumaGreen[p.green] + t.lumaRed[p.red]);
        const double band = luma < grain.lowerBand   ? 255.0 / grain.lowerBand * luma
                            : luma > grain.upperBand ? 255.0 / (255 - grain.upperBand) * (255 - luma)
                                                     : 255.0;
        const auto w = static_cast<float>(band);
        for (int c = 0; c < 3; ++c) {
            const int from = grain.grey ? 0 : c;
            const int32_t e = limit(double{w} - keep[from], 0, 255), f = 255 - e;
            const float n = noise2(static_cast<float>((offset[from] + x) * double{inverse[from]}),
                                   static_cast<float>((offset[from] + y) * double{inverse[from]}));
            const int32_t v = limit((n * 0.5 + 0.5) * 255, 0, 255);
            uint8_t& byte = c == 0 ? p.red : c == 1 ? p.green : p.blue;
            byte = static_cast<uint8_t>(t.scaleByte[e][t.blendSoftLight[v][byte]] + t.scaleByte[f][byte]);
        }
    }
    return pixels;
}

}  // namespace krl::reference
