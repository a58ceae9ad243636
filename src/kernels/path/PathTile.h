#pragma once

#include <algorithm>
#include <cstdint>

#include "core/Bands.h"
#include "core/ChannelMask.h"
#include "kernels/path/PathSum.h"

/// Paths that differ from pixel to pixel are walked for a tile of pixels side by side, one sample of
/// each at a time: neighbours sample neighbours, so the tile's samples are close in memory, and their places
/// come from the same few operations on many pixels.
namespace krl {

/// A tile of pixels, numbered row by row.
struct PathTile {
    static constexpr int32_t kWidth = 32, kHeight = 8, kPixels = kWidth * kHeight;

    int32_t left, top, width, height;

    int32_t count() const { return width * height; }
    int32_t x(int32_t i) const { return left + i % width; }
    int32_t y(int32_t i) const { return top + i / width; }
};

/// Where one sample of every pixel of a tile falls.
struct TilePlaces {
    int32_t offset[PathTile::kPixels];
    int32_t doubt[PathTile::kPixels];  ///< not 0 where the exact definition must decide
};

/// The sums of a tile's paths.
template <bool kWeighted>
class TileSums {
public:
    TileSums(const ImageEngine& engine, const PathSource& source)
        : unitFromByte_(engine.tables().unitFromByte), pixels_(source.pixels()) {}

    /// Adds one sample for each of the first `count` pixels.
    void add(const int32_t* offsets, int32_t count) {
        for (int32_t i = 0; i < count; ++i) {
            const Pixel p = pixels_[offsets[i]];
            fields_[i] += fieldsOf(p);
            if constexpr (kWeighted) sums_[i].weight += unitFromByte_[p.alpha];
        }
        if (++held_ == kFieldSamples) gather();
    }
    /// Adds one sample `times` times for pixel `i`.
    void addRepeatedly(int32_t i, int32_t offset, int64_t times) {
        const Pixel p = pixels_[offset];
        sums_[i].add(p, times);
        if constexpr (kWeighted)
            sums_[i].weight = addedRepeatedly(sums_[i].weight, unitFromByte_[p.alpha], times);
    }
    /// Brings everything that was added into the sums.
    void gather() {
        for (int32_t i = 0; i < PathTile::kPixels; ++i) {
            sums_[i].add(fields_[i]);
            fields_[i] = 0;
        }
        held_ = 0;
    }
    const PathSum& operator[](int32_t i) const { return sums_[i]; }

private:
    static constexpr int32_t kFieldSamples = 256;

    const float* unitFromByte_;
    const Pixel* pixels_;
    uint64_t fields_[PathTile::kPixels] = {};
    PathSum sums_[PathTile::kPixels];
    int32_t held_ = 0;
};

/// Calls `work(tile)` for tiles that cover the image, banded by rows.
template <class Work>
Status forEachPathTile(const ImageEngine& engine, Work&& work) {
    const int32_t width = engine.buffer()->width;
    return forEachRowRange(engine, [&](IndexRange rows) {
        for (int32_t y = rows.first; y < rows.last; y += PathTile::kHeight)
            for (int32_t x = 0; x < width; x += PathTile::kWidth) {
                engine.throwIfCancelled();
                work(PathTile{x, y, std::min(PathTile::kWidth, width - x),
                              std::min(PathTile::kHeight, rows.last - y)});
            }
    });
}

/// More than the error, in pixels, of a place that is made without sine and cosine of its own: some
/// roundings of the largest coordinate that goes into it.
inline double placeError(Point point, const PathSource& source) {
    const double largest = std::abs(double(point.x)) + std::abs(double(point.y)) +
                           8.0 * (double(source.width()) + source.height());
    return 1e-9 + largest * 1e-15;
}

}  // namespace krl
