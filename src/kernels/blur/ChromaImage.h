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

}  // namespace krl
