#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "effects/composite/GleamStages.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/ramp/Curve.h"
#include "support/Picture.h"

/// The gleams a pixel at a time, and their rays by division.
namespace krl::test {

struct GleamNumbers {
    GleamLook look;
    std::vector<CurveKey> colours;
    int32_t blur = 0;
    Point centre;
    float strength = 1, falloff = 0.5f;
    SampleQuality quality = SampleQuality::Standard;
    int32_t distance = 10;
};

inline int clampedByte(double v) { return int(v < 0 ? 0 : v > 255 ? 255 : v); }

inline Picture slowLight(const Picture& front, const GleamLook& s) {
    const int black = clampedByte(s.black), white = clampedByte(s.white);
    const auto slope = float(256.0 / (white - black + 1));
    const auto level = [&](int i) {
        return uint8_t(i > white ? 255 : i < black ? 0 : int((i - black) * double(slope)));
    };
    Picture light = front;
    for (Pixel& p : light.pixels()) {
        if (s.colourMethod == GleamColour::ColouriseImage) {
            const uint8_t mean = level((p.blue + p.green + p.red) / 3);
            p = {mean, mean, mean, p.alpha};
        } else {
            p = {level(p.blue), level(p.green), level(p.red), p.alpha};
        }
    }
    return light;
}

inline Picture slowGleamFinish(const Picture& image, const Picture& front, Picture light, const GleamLook& s,
                               const std::vector<CurveKey>& colours) {
    const LookupTables& t = sharedTables();
    const bool colourise = s.colourMethod == GleamColour::ColouriseImage;
    if (colourise && colours.size() >= 2) {
        std::vector<CurveKey> keys = colours;
        sortCurveKeys(keys);
        keys = padCurveKeys(keys, 255);
        std::vector<CurveSample> samples[3];
        for (int c = 0; c < 3; ++c) samples[c] = buildChannelCurve(keys, c, 255);
        for (Pixel& p : light.pixels()) {
            const auto luma = float(double(t.lumaBlue[p.blue]) + t.lumaGreen[p.green] + t.lumaRed[p.red]);
            const auto place = float(luma * 0.00392156862745098);
            const auto at = [&](size_t c) {
                return uint8_t(
                    clampedByte(samples[c][size_t(double(place) * double(samples[c].size() - 1))].value));
            };
            p = {at(0), at(1), at(2), p.alpha};
        }
    }
    const auto room = float(1.0 - (s.brightness < 0 ? 0 : s.brightness > 1 ? 1 : s.brightness));
    const auto gain = [&](int i) {
        return room == 0 ? 255 : clampedByte(((i / 255.0) / double(room)) * 255);
    };
    Picture result = image;
    for (size_t i = 0; i < result.pixels().size(); ++i) {
        Pixel& p = result.pixels()[i];
        const Pixel f = front.pixels()[i], l = light.pixels()[i];
        const int a1 = clampedByte(f.alpha - (255 - clampedByte(s.compositeTransparency)));
        const int a2 = clampedByte(l.alpha - (255 - clampedByte(s.transparency)));
        const int k = gain(l.blue);
        uint8_t out[3];
        const uint8_t in[3] = {p.blue, p.green, p.red}, over[3] = {f.blue, f.green, f.red},
                      lit[3] = {l.blue, l.green, l.red};
        for (int c = 0; c < 3; ++c) {
            const int below = blendChannel(in[c], over[c], s.compositeBlendMethod, a1, t);
            int g = gain(lit[c]);
            if (colourise && colours.empty()) g = k;
            if (colourise && colours.size() == 1)
                g = clampedByte(double(t.unitFromByte[colours[0].channel(c)]) * k);
            out[c] = uint8_t(blendChannel(below, g, s.blendMethod, a2, t));
        }
        p = {out[0], out[1], out[2], p.alpha};
    }
    return result;
}

inline Picture slowGleamBlur(const Picture& image, const Picture& front, const GleamNumbers& n) {
    Picture light = slowLight(front, n.look);
    if (n.blur > 0) {
        EXPECT_EQ(
            TentBlur(EngineOf(1)).blurRGBA(light.pixels().data(), light.height(), light.width(), n.blur),
            kStatusOk);
    }
    return slowGleamFinish(image, front, light, n.look, n.colours);
}

/// The rays by their definition: a doubled source, records with a flag, every round of the run-in.
class SlowRays {
public:
    SlowRays(const Picture& light, const GleamNumbers& n)
        : scale_(n.quality == SampleQuality::Antialiased ? 2 : 1) {
        width_ = light.width() * scale_;
        height_ = light.height() * scale_;
        source_.resize(size_t(width_) * size_t(height_));
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x) source_[at(x, y)] = light.at(x / scale_, y / scale_);
        target_.assign(source_.size(), Pixel{0, 0, 0, 0});
        written_.assign(source_.size(), false);
        column_ = n.centre.x * scale_;
        row_ = n.centre.y * scale_;
        distance_ = n.distance * scale_;
        strength_ = n.strength < 0 ? 0 : n.strength;
        falloff_ = float(std::pow(double(n.falloff), 0.03333333507180214));
        if (falloff_ < 0) falloff_ = 0;
        if (falloff_ >= 1) falloff_ = 0.9998999834060669f;
        if (scale_ == 2) falloff_ = float(falloff_ + (1 - double(falloff_)) * 0.5);
    }

    Picture cast() {
        if (row_ <= height_ - 1)
            for (int i = 0; i < width_; ++i) ray(i, height_ - 1);
        if (column_ <= width_ - 1)
            for (int i = height_ - 1; i >= 0; --i) ray(width_ - 1, i);
        if (row_ >= 0)
            for (int i = width_ - 1; i >= 0; --i) ray(i, 0);
        if (column_ >= 0)
            for (int i = 0; i < height_; ++i) ray(0, i);
        Picture light(width_ / scale_, height_ / scale_);
        for (int y = 0; y < light.height(); ++y)
            for (int x = 0; x < light.width(); ++x) light.at(x, y) = mean(x * scale_, y * scale_);
        return light;
    }

private:
    size_t at(int x, int y) const { return size_t(y) * size_t(width_) + size_t(x); }

    Pixel mean(int x, int y) const {
        if (scale_ == 1) return target_[at(x, y)];
        const Pixel p[4] = {target_[at(x, y)], target_[at(x + 1, y)], target_[at(x, y + 1)],
                            target_[at(x + 1, y + 1)]};
        const auto of = [&](auto byte) {
            return uint8_t((byte(p[0]) + byte(p[1]) + byte(p[2]) + byte(p[3])) / 4);
        };
        return {of([](Pixel q) { return int(q.blue); }), of([](Pixel q) { return int(q.green); }),
                of([](Pixel q) { return int(q.red); }), of([](Pixel q) { return int(q.alpha); })};
    }

    void ray(int endColumn, int endRow) {
        const int dx = column_ - endColumn, dy = row_ - endRow;
        const int length = int(std::sqrt(double(dx * dx + dy * dy)));
        if (length == 0) return;
        int32_t sums[4] = {};
        for (int s = 0; s <= length; ++s) {
            const int x = column_ - dx * s / length, y = row_ - dy * s / length;
            if (x < 0 || y < 0 || x >= width_ || y >= height_) continue;
            const Pixel p = source_[at(x, y)];
            const uint8_t bytes[4] = {p.blue, p.green, p.red, p.alpha};
            uint8_t out[4];
            for (int c = 0; c < 4; ++c) {
                const int32_t b = truncate(bytes[c] * double(strength_));
                if (s < distance_)
                    for (int k = distance_; k >= s; --k)
                        sums[c] = (k == distance_ ? sums[c] : faded(sums[c])) + b;
                else
                    sums[c] += b;
                sums[c] = std::min(sums[c], 25500);
                out[c] = uint8_t(std::min(255, truncate(sums[c] * double(float(1.0 / distance_)))));
                // What is written is decided before the sum fades.
                sums[c] = faded(sums[c]);
            }
            if (!written_[at(x, y)]) target_[at(x, y)] = {out[0], out[1], out[2], out[3]};
            written_[at(x, y)] = true;
        }
    }

    int32_t faded(int32_t sum) const { return truncate(sum * double(falloff_)); }

    int scale_, width_, height_, column_, row_, distance_;
    float strength_, falloff_;
    std::vector<Pixel> source_, target_;
    std::vector<bool> written_;
};

inline Picture slowGleamZoom(const Picture& image, const Picture& front, const GleamNumbers& n) {
    const Picture light = SlowRays(slowLight(front, n.look), n).cast();
    return slowGleamFinish(image, front, light, n.look, n.colours);
}

}  // namespace krl::test
