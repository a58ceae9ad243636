#include <algorithm>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Bands.h"
#include "core/ChannelMask.h"
#include "core/Scratch.h"
#include "core/VectorLevels.h"
#include "krlimage/stylise.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS
void addBytes(uint32_t* sums, const uint8_t* bytes, int64_t count) {
    for (int64_t i = 0; i < count; ++i) sums[i] += bytes[i];
}

/// One row of blocks: sums down the columns first, then the blocks' values, then every row.
class BlockRow {
public:
    BlockRow(const ImageBuffer& image, int32_t amount, ChannelMask mask, uint32_t* columnSums, Pixel* values)
        : image_(image), amount_(amount), mask_(mask), columnSums_(columnSums), values_(values) {}

    void flatten(IndexRange rows) const {
        std::fill(columnSums_, columnSums_ + int64_t(image_.width) * 4, 0u);
        for (int32_t y = rows.first; y < rows.last; ++y)
            addBytes(columnSums_, &image_.row(y)->blue, int64_t(image_.width) * 4);
        for (int64_t x = 0; x < image_.width; x += amount_) {
            const int64_t end = std::min<int64_t>(x + amount_, image_.width);
            std::fill(values_ + x, values_ + end, valueOf(x, end, rows.last - rows.first));
        }
        for (int32_t y = rows.first; y < rows.last; ++y) mask_.write(image_.row(y), values_, image_.width);
    }

private:
    Pixel valueOf(int64_t first, int64_t last, int32_t rows) const {
        uint32_t sum[4] = {};
        for (int64_t x = first; x < last; ++x)
            for (int channel = 0; channel < 4; ++channel) sum[channel] += columnSums_[x * 4 + channel];
        const auto samples = static_cast<int32_t>((last - first) * rows + 1);
        const auto value = [&](int channel) {
            return clampByte(static_cast<int32_t>(sum[channel]) / samples);
        };
        return {value(0), value(1), value(2), value(3)};
    }

    const ImageBuffer& image_;
    int32_t amount_;
    ChannelMask mask_;
    uint32_t* columnSums_;
    Pixel* values_;
};

}  // namespace

/// Flat blocks, each the sum of its samples over one more than their number.
Status mosaic(ImageEngine& engine, int32_t amount, ChannelTarget target) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const int32_t side = std::max(amount, 2), bands = engine.getThreadCount();
    const auto blockRows = static_cast<int32_t>((int64_t(image.height) + side - 1) / side);
    const auto width = static_cast<size_t>(image.width);
    const uint64_t places = uint64_t(width) * static_cast<uint64_t>(std::min(bands, blockRows));
    const Scratch<uint32_t> columnSums(places * 4);
    const Scratch<Pixel> values(places);
    return runBands(engine, bands, [&](int32_t band) {
        const IndexRange share = lineBand(blockRows, bands, band);
        if (share.first >= share.last) return;
        const size_t room = width * static_cast<size_t>(band);
        const BlockRow blocks(image, side, ChannelMask(target), columnSums.data() + room * 4,
                              values.data() + room);
        for (int64_t y = int64_t(share.first) * side; y < image.height && y < int64_t(share.last) * side;
             y += side)
            blocks.flatten(
                {static_cast<int32_t>(y), static_cast<int32_t>(std::min<int64_t>(y + side, image.height))});
    });
}

void describeMosaic(Catalogue& catalogue) {
    catalogue.add("krlImageMosaic", mosaic)
        .summary("Makes blocks of one colour.")
        .words("pixelate, pixelise, censor, blocks, anonymise, hide")
        .integer("amount", {.from = 2, .to = 100, .example = 12, .least = 2, .pixels = true},
                 "side of a block, in pixels")
        .symbol("colourOrAlpha", anyChannels(), kElseAlpha, kChannelsMeaning)
        .inputFailure("Mosaic input failure (Image)")
        .failed("Failed Mosaic function (Image)");
}

}  // namespace krl
