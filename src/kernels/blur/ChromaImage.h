#pragma once

#include <cstdint>

#include "core/Bands.h"
#include "core/Scratch.h"
#include "krlimage/engine.h"

namespace krl {

/// The loaded picture as luma and two colour differences, in scratch. One word for each pixel: byte
/// 0 is U, the blue difference, byte 1 V, the red one, byte 2 Y, the luma; byte 3 holds the luma
/// too, for whoever needs it twice.
class ChromaImage {
public:
    /// Takes the scratch; the words are filled by `split`.
    explicit ChromaImage(const ImageBuffer& image) : words_(image.bytes() / sizeof(Pixel)) {}

    /// Fills the words from the loaded picture, in bands.
    Status split(const ImageEngine& engine) const;

    /// Turns the words into the colour of the loaded picture, in bands; alpha stays.
    Status merge(const ImageEngine& engine) const;

    /// Calls `work(first, last)` with the two ends of each band's run of words.
    template <class Work>
    Status forEachWordSpan(const ImageEngine& engine, Work&& work) const {
        return forEachSpan(engine, [&](const Pixel* first, const Pixel* last) {
            work(beside(engine, first), beside(engine, first) + (last - first));
        });
    }

    Pixel* data() const { return words_.data(); }

private:
    /// The word of a pixel of the loaded picture.
    Pixel* beside(const ImageEngine& engine, const Pixel* pixel) const {
        return data() + (pixel - engine.buffer()->row(0));
    }

    Scratch<Pixel> words_;
};

/// `n / 1000`, truncated, in a form that the compiler makes vectors of. `float` holds `n` exactly
/// below 2^24 in size and 0.001f is the least bit above a thousandth, so the product never falls
/// short of a whole number, and below 2^18 never comes near the next.
inline int32_t thousandth(int32_t n) { return static_cast<int32_t>(static_cast<float>(n) * 0.001f); }

}  // namespace krl
