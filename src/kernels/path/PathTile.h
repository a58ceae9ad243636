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
    static constexpr int32_t kWidth = 64, kHeight = 4, kPixels = kWidth * kHeight;

    int32_t left, top, width, height;

    int32_t count() const { return width * height; }
    int32_t x(int32_t i) const { return left + i % width; }
    int32_t y(int32_t i) const { return top + i / width; }
};

/// How far a point is from the pixels of a tile, and whether any of these distances has wrapped: both are
/// decided at the corners.
struct TileReach {
    double farthest = 0;
    bool hasWrapped = false;

    TileReach(Point point, const PathTile& tile) {
        for (int32_t x : {tile.left, tile.left + tile.width - 1})
            for (int32_t y : {tile.top, tile.top + tile.height - 1}) {
                const PointReach reach(point, x, y);
                farthest = std::max(farthest, reach.distance);
                hasWrapped = hasWrapped || reach.hasWrapped;
            }
    }
};

/// Where one sample of every pixel of a tile falls. A doubt below 0 says that the exact definition must
/// decide.
struct TilePlaces {
    int32_t offset[PathTile::kPixels];
    int32_t doubt[PathTile::kPixels];
    int32_t rowDoubt[PathTile::kHeight];  ///< whether any of a row is in doubt

    /// Calls `referee(i)` for every pixel in doubt.
    template <class Referee>
    void settle(const PathTile& tile, Referee&& referee) const {
        for (int32_t row = 0; row < tile.height; ++row) {
            if (rowDoubt[row] >= 0) continue;
            for (int32_t i = row * tile.width; i < (row + 1) * tile.width; ++i)
                if (doubt[i] < 0) referee(i);
        }
    }
};

/// Places in a picture as whole numbers: so many bits of a pixel's fraction, counted from the pixel (`left`,
/// `top`).
struct FixedPlaces {
    int32_t bits;
    int32_t error;  ///< more than a place may be wrong by, in its last bits
    int32_t left, top;
    int32_t width, height;  ///< of the picture

    double unit() const { return double(int64_t(1) << bits); }

    /// The offset of the pixel that (`x`, `y`) falls into, limited to the picture. `doubt` becomes negative
    /// where an error of `error` could lead to another.
    int32_t offset(int32_t x, int32_t y, int32_t& doubt) const {
        const int32_t fraction = (1 << bits) - 1;
        doubt = (((x + error) & fraction) - 2 * error) | (((y + error) & fraction) - 2 * error);
        return within((y >> bits) + top, height) * width + within((x >> bits) + left, width);
    }

private:
    static int32_t within(int32_t place, int32_t size) {
        const int32_t positive = place > 0 ? place : 0;
        return positive < size - 1 ? positive : size - 1;
    }
};

/// The low byte of a truncated quotient; 0 over 0. Of whole numbers of 32 bits it is that of their quotient.
uint8_t quotientByte(double sum, double divisor);

/// The sums of a tile's paths: one array for each channel, 32-bit integers that wrap, and the weight of
/// colour: alpha on 0..1, added sample by sample in single precision.
class TileSums {
public:
    TileSums(const ImageEngine& engine, const PathSource& source, bool weighted)
        : units_(weighted ? engine.tables().unitFromByte : nullptr), pixels_(source.pixels()) {}

    /// Adds one sample for each of the first `count` pixels.
    void add(const int32_t* offsets, int32_t count);
    /// Adds one sample `times` times for pixel `i`.
    void addRepeatedly(int32_t i, int32_t offset, int64_t times);

    /// The means of the first `count` paths, of which path i has `samples[i]` samples, all at most `most`:
    /// every channel over the number of samples. With weights, colour is over the weight, and has no meaning
    /// where that is 0.
    void means(int32_t count, const int32_t* samples, int32_t most, Pixel* results);
    /// The weight of colour of path `i`, after `means`.
    float weight(int32_t i) const { return weights_[i]; }

private:
    static constexpr int32_t kFieldSamples = 256;

    void gather(int32_t count);

    const float* units_;
    const Pixel* pixels_;
    /// Two channels each in fields of 16 bits, which hold 256 samples.
    uint32_t blueAndRed_[PathTile::kPixels] = {}, greenAndAlpha_[PathTile::kPixels] = {};
    uint32_t sums_[4][PathTile::kPixels] = {};
    float weights_[PathTile::kPixels] = {};
    int32_t held_ = 0;
};

/// Calls `work(tile)` for tiles that cover the image, banded by rows and block by block: what the paths of a
/// block sample fits a processor's cache.
template <class Work>
Status forEachPathTile(const ImageEngine& engine, Work&& work) {
    constexpr int32_t kBlock = 256;
    const int32_t width = engine.buffer()->width;
    const auto forRows = [&](IndexRange rows, IndexRange columns) {
        for (int32_t y = rows.first; y < rows.last; y += PathTile::kHeight)
            for (int32_t x = columns.first; x < columns.last; x += PathTile::kWidth) {
                engine.throwIfCancelled();
                work(PathTile{x, y, std::min(PathTile::kWidth, columns.last - x),
                              std::min(PathTile::kHeight, rows.last - y)});
            }
    };
    return forEachRowRange(engine, [&](IndexRange rows) {
        for (int32_t top = rows.first; top < rows.last; top += std::min(kBlock, rows.last - top))
            for (int32_t left = 0; left < width; left += std::min(kBlock, width - left))
                forRows({top, top + std::min(kBlock, rows.last - top)},
                        {left, left + std::min(kBlock, width - left)});
    });
}

/// Calls `work(i, pixel)` for the pixels of a tile of `image`.
template <class Work>
void forEachPixelOf(const PathTile& tile, const ImageBuffer& image, Work&& work) {
    for (int32_t row = 0; row < tile.height; ++row) {
        Pixel* pixels = image.row(tile.top + row) + tile.left;
        for (int32_t i = 0; i < tile.width; ++i) work(row * tile.width + i, pixels[i]);
    }
}

/// Writes the selected bytes of a tile's results, numbered like its pixels.
inline void writeTile(const PathTile& tile, const ImageBuffer& image, const Pixel* results,
                      ChannelMask mask) {
    for (int32_t row = 0; row < tile.height; ++row)
        mask.write(image.row(tile.top + row) + tile.left, results + row * tile.width, tile.width);
}

/// More than the roundings, in pixels, of a place that is made without sine and cosine of its own: those of
/// the largest coordinates that go into it.
inline double placeRoundings(Point point, const PathSource& source) {
    const double largest = std::abs(double(point.x)) + std::abs(double(point.y)) +
                           8.0 * (double(source.width()) + source.height());
    return largest * 1e-15;
}

}  // namespace krl
