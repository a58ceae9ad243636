#include <algorithm>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Bands.h"
#include "core/ChannelMask.h"
#include "core/ImageCopy.h"
#include "core/Random.h"
#include "krlimage/stylise.h"

namespace krl {

namespace {

/// How far tiles slip: two draws for each tile, in row order.
class Slips {
public:
    Slips(int32_t range, int32_t seed) : range_(range), seed_(seed) {}

    /// The generator as it stands before tile `number`.
    Random before(int64_t number) const {
        Random random(seed_);
        random.skip(2 * static_cast<uint64_t>(number));
        return random;
    }
    int32_t next(Random& random) const { return random.next() % range_ - range_ / 2; }
    /// Rows that a tile can slip down by, at least and at most.
    int32_t least() const { return -(range_ / 2); }
    int32_t most() const { return std::min(range_ - 1, 0x7FFF) - range_ / 2; }

private:
    int32_t range_, seed_;
};

/// The part of a tile's rows or columns whose source and destination both lie past 0 and before
/// `size`, the destination within `least..end` besides.
IndexRange slippingPart(int64_t first, int64_t length, int32_t slip, int32_t size, int32_t least,
                        int32_t end) {
    const int64_t from = std::max<int64_t>({first, 1, int64_t(least) - slip, int64_t(1) - slip});
    const int64_t to = std::min<int64_t>({first + length, size, int64_t(end) - slip});
    return {static_cast<int32_t>(from), static_cast<int32_t>(std::max(from, to))};
}

/// One run of the effect. Every worker lays all tiles in the order of the bands and keeps what falls
/// on its own rows, so later tiles win whichever worker is faster.
class Tiling {
public:
    Tiling(const ImageEngine& engine, int32_t tileWidth, int32_t tileHeight, Slips slips,
           ChannelTarget target)
        : image_(*engine.buffer()),
          bands_(engine.getThreadCount()),
          tileWidth_(tileWidth),
          tileHeight_(tileHeight),
          slips_(slips),
          isWhole_(target == ChannelTarget::RGBA),
          mask_(target),
          copy_(image_),
          across_((int64_t(image_.width) + tileWidth - 1) / tileWidth),
          tiles_(across_ * ((int64_t(image_.height) + tileHeight - 1) / tileHeight)) {}

    /// Lays what falls on `rows`.
    void lay(IndexRange rows) const {
        for (int32_t band = 0; band < bands_; ++band) {
            const IndexRange own = lineBand(image_.height, bands_, band);
            int64_t tile = firstTile(own.first);
            for (int64_t y = own.first; y < own.last && tile < tiles_; y += tileHeight_, tile += across_)
                if (y + slips_.least() < rows.last && y + tileHeight_ + slips_.most() > rows.first)
                    layRowOfTiles(y, tile, rows);
        }
    }

private:
    /// The tile that a band's first row counts as.
    int64_t firstTile(int32_t firstRow) const {
        return std::max(0, wrapMultiply((firstRow - 2) / tileHeight_, image_.width) / tileWidth_);
    }

    void layRowOfTiles(int64_t y, int64_t tile, IndexRange rows) const {
        Random random = slips_.before(tile);
        for (int64_t x = 0; x < image_.width && tile < tiles_; x += tileWidth_, ++tile) {
            const int32_t slipX = slips_.next(random), slipY = slips_.next(random);
            const IndexRange columns = slippingPart(x, tileWidth_, slipX, image_.width, 1, image_.width);
            const IndexRange lines =
                slippingPart(y, tileHeight_, slipY, image_.height, rows.first, rows.last);
            for (int32_t line = lines.first; line < lines.last; ++line)
                put(image_.row(line + slipY) + columns.first + slipX, copy_.row(line) + columns.first,
                    columns.last - columns.first);
        }
    }

    void put(Pixel* target, const Pixel* source, int32_t count) const {
        if (isWhole_)
            std::memcpy(target, source, static_cast<size_t>(count) * sizeof(Pixel));
        else
            mask_.write(target, source, count);
    }

    const ImageBuffer& image_;
    int32_t bands_, tileWidth_, tileHeight_;
    Slips slips_;
    bool isWhole_;
    ChannelMask mask_;
    ImageCopy copy_;
    int64_t across_, tiles_;
};

}  // namespace

/// Tiles that slip out of place, each by two draws of its own.
Status tile(ImageEngine& engine, int32_t tileW, int32_t tileH, int32_t random, int32_t seed,
            ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const Tiling tiling(engine, std::max(tileW, 1), std::max(tileH, 1), Slips(std::max(random, 1), seed),
                        target);
    return forEachRowRange(engine, [&](IndexRange rows) { tiling.lay(rows); });
}

void describeTile(Catalogue& catalogue) {
    catalogue.add("krlImageTile", tile)
        .summary("Cuts the picture into tiles that slip out of place.")
        .words("mosaic, pieces, puzzle, shuffle")
        .integer("tileW", {.from = 1, .to = 200, .example = 24, .least = 1, .pixels = true},
                 "width of a tile, in pixels")
        .integer("tileH", {.from = 1, .to = 200, .example = 24, .least = 1, .pixels = true},
                 "height of a tile, in pixels")
        .integer("random", {.from = 1, .to = 100, .example = 14, .least = 1, .neutral = 1, .pixels = true},
                 "pixels of play; 1 is none")
        .integer("seed", {.from = 0, .to = 32767, .example = 7}, "number that decides how the tiles slip")
        .symbol("colourOrAlpha", anyChannels(), refused("Tile invalid colourOrAlpha input (Image)"),
                kChannelsMeaning)
        .inputFailure("Tile input failure (Image)")
        .failed("Failed Tile function (Image)")
        .dependsOnBands();
}

}  // namespace krl
