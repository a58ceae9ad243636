#pragma once

#include "core/LookupTables.h"
#include "core/Scratch.h"
#include "kernels/colour/ColourSpace.h"
#include "krlimage/pixel.h"

namespace krl {

/// The mattes of a key on saturation and value, which depend only on a pixel's largest and smallest
/// channel: computed once for each pair of bytes, then read.
class ExtremesTable {
public:
    /// From `matteOf(const Hsv&)`, whose argument's hue means nothing.
    template <class MatteOf>
    ExtremesTable(const LookupTables& tables, MatteOf&& matteOf) {
        for (size_t max = 0; max < 256; ++max)
            for (size_t min = 0; min <= max; ++min) {
                const float least = tables.unitFromByte[min];
                mattes_[max << 8 | min] = matteOf(rgbToHsv(tables.unitFromByte[max], least, least));
            }
    }

    /// Writes the mattes of `count` pixels, at most `kBatchPixels`.
    void mattesOf(const Pixel* pixels, size_t count, uint8_t* mattes) const;

private:
    Scratch<uint8_t> mattes_{size_t(256) << 8};
};

}  // namespace krl
