#include "player/host/ShallowImage.h"

#include <algorithm>

namespace krl::player {

namespace {

/// Five bits spread over eight, so that the ends stay the ends.
uint8_t spread(uint32_t bits) { return static_cast<uint8_t>(bits << 3 | bits >> 2); }

/// Converts colours to the words of a format and back. Neighbours are often equal, and finding the nearest of
/// a palette is slow, so the last one is kept.
class Converter {
public:
    explicit Converter(PixelFormat format) : format_(format) {}

    uint32_t packed(const Pixel& pixel) {
        if (format_.depth == 24)
            return uint32_t{pixel.blue} | uint32_t{pixel.green} << 8 | uint32_t{pixel.red} << 16;
        if (format_.depth == 16)
            return uint32_t{pixel.red} >> 3 << 10 | uint32_t{pixel.green} >> 3 << 5 |
                   uint32_t{pixel.blue} >> 3;
        const bool known = pixel.blue == last_.blue && pixel.green == last_.green && pixel.red == last_.red;
        if (!known) lastIndex_ = nearestIndex(format_.palette, format_.depth, pixel);
        last_ = pixel;
        return lastIndex_;
    }

    Pixel unpacked(uint32_t word, uint8_t alpha) const {
        const auto byte = [word](int shift) { return static_cast<uint8_t>(word >> shift); };
        if (format_.depth == 24) return {byte(0), byte(8), byte(16), alpha};
        if (format_.depth == 16)
            return {spread(word & 31), spread(word >> 5 & 31), spread(word >> 10 & 31), alpha};
        Pixel colour = paletteColour(format_.palette, format_.depth, byte(0));
        colour.alpha = alpha;
        return colour;
    }

private:
    PixelFormat format_;
    Pixel last_{255, 255, 255, 255};
    uint8_t lastIndex_ = 0;  ///< white is the first colour of every palette
};

/// Where a pixel is in its row: whole bytes, or some bits of one.
struct Spot {
    size_t byte;
    int shift;
    uint32_t mask;
};

Spot spotOf(int32_t x, int32_t depth) {
    const auto bit = static_cast<size_t>(x) * static_cast<size_t>(depth);
    const uint32_t mask = depth >= 8 ? 0xFFu : (1u << depth) - 1;
    return {bit / 8, depth >= 8 ? 0 : 8 - depth - static_cast<int>(bit % 8), mask};
}

void write(uint8_t* row, int32_t x, int32_t depth, uint32_t word) {
    const Spot spot = spotOf(x, depth);
    uint8_t* at = row + spot.byte;
    if (depth <= 8) *at = static_cast<uint8_t>((*at & ~(spot.mask << spot.shift)) | word << spot.shift);
    for (int i = 0; depth > 8 && i < depth / 8; ++i) at[i] = static_cast<uint8_t>(word >> 8 * i);
}

uint32_t read(const uint8_t* row, int32_t x, int32_t depth) {
    const Spot spot = spotOf(x, depth);
    const uint8_t* at = row + spot.byte;
    if (depth <= 8) return uint32_t{*at} >> spot.shift & spot.mask;
    uint32_t word = 0;
    for (int i = 0; i < depth / 8; ++i) word |= uint32_t{at[i]} << 8 * i;
    return word;
}

}  // namespace

int32_t rowBytesOf(int32_t width, int32_t depth) {
    return static_cast<int32_t>((int64_t{width} * depth + 31) / 32 * 4);
}

std::vector<uint8_t> shallowRows(const Bitmap& image, PixelFormat format) {
    const auto rowBytes = static_cast<size_t>(rowBytesOf(image.width, format.depth));
    std::vector<uint8_t> rows(rowBytes * static_cast<size_t>(image.height));
    Converter converter(format);
    for (int32_t y = 0; y < image.height; ++y)
        for (int32_t x = 0; x < image.width; ++x)
            write(&rows[rowBytes * static_cast<size_t>(y)], x, format.depth,
                  converter.packed(image.row(y)[x]));
    return rows;
}

void takeShallowRows(const std::vector<uint8_t>& rows, PixelFormat format, Bitmap& image) {
    const auto rowBytes = static_cast<size_t>(rowBytesOf(image.width, format.depth));
    Converter converter(format);
    for (int32_t y = 0; y < image.height; ++y)
        for (int32_t x = 0; x < image.width; ++x) {
            Pixel& pixel = image.row(y)[x];
            const uint32_t word = read(&rows[rowBytes * static_cast<size_t>(y)], x, format.depth);
            if (word != converter.packed(pixel)) pixel = converter.unpacked(word, pixel.alpha);
        }
}

void settle(Bitmap& image, PixelFormat format, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    if (format.depth > 16) return;
    Converter converter(format);
    for (int32_t y = std::max(top, 0); y < std::min(bottom, image.height); ++y)
        for (int32_t x = std::max(left, 0); x < std::min(right, image.width); ++x) {
            Pixel& pixel = image.row(y)[x];
            pixel = converter.unpacked(converter.packed(pixel), pixel.alpha);
        }
}

}  // namespace krl::player
