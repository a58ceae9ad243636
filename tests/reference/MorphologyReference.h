#pragma once

#include <functional>
#include <vector>

#include "core/LookupTables.h"
#include "support/Picture.h"

/// Morphology as the ring that a line is pushed through, scanned whole for every result.
namespace krl::test {

using Line = std::vector<int>;

struct RingExtreme {
    int filler;
    std::function<int(int, int)> combine;

    int of(const Line& ring) const {
        int result = filler;
        for (int sample : ring) result = combine(result, sample);
        return result;
    }
};

inline RingExtreme ringMinimum() {
    return {255, [](int a, int b) { return a < b ? a : b; }};
}
inline RingExtreme ringMaximum() {
    return {0, [](int a, int b) { return a > b ? a : b; }};
}

/// One line of samples through a ring of `2 * size + 1`, seeded as far as sample `size - 2`.
inline Line throughRing(const Line& samples, int size, const RingExtreme& extreme) {
    const int window = size * 2 + 1, half = window / 2, length = int(samples.size());
    const auto sample = [&](int i) { return i < length ? samples[size_t(i)] : extreme.filler; };
    Line ring(size_t(window), extreme.filler), result;
    int k = 0;
    for (int x = 0; x < length; ++x) {
        if (x == 0 && half >= 2)
            for (int i = 0; i <= half - 2; ++i) ring[size_t(k++)] = sample(i);
        ring[size_t(k)] = sample(x + half);
        k = (k + 1) % window;
        result.push_back(extreme.of(ring));
    }
    return result;
}

/// Replaces byte `channel` along rows or columns by what `work` makes of each line of samples.
inline void replaceLines(Picture& picture, size_t channel, bool alongRows, bool scaled,
                         const std::function<Line(const Line&)>& work) {
    const int lines = alongRows ? picture.height() : picture.width();
    const int length = alongRows ? picture.width() : picture.height();
    for (int line = 0; line < lines; ++line) {
        const auto pixel = [&](int i) -> Pixel& {
            return alongRows ? picture.at(i, line) : picture.at(line, i);
        };
        Line samples;
        for (int i = 0; i < length; ++i) {
            const Pixel& p = pixel(i);
            samples.push_back(scaled ? sharedTables().scaleByte[p.alpha][p[channel]] : p[channel]);
        }
        const Line result = work(samples);
        for (int i = 0; i < length; ++i) pixel(i)[channel] = uint8_t(result[size_t(i)]);
    }
}

inline bool anyTransparent(const Picture& picture) {
    for (const Pixel& p : picture.pixels())
        if (p.alpha != 255) return true;
    return false;
}

inline Picture referenceMorphology(Picture picture, int size, const RingExtreme& extreme) {
    const bool scaled = anyTransparent(picture);
    const auto work = [&](const Line& line) { return throughRing(line, size, extreme); };
    for (size_t channel = 0; channel < 3; ++channel) {
        replaceLines(picture, channel, true, scaled, work);
        replaceLines(picture, channel, false, scaled, work);
    }
    return picture;
}

}  // namespace krl::test
