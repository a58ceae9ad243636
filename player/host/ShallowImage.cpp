#include "player/host/ShallowImage.h"

#include <cstring>

namespace krl::player {

namespace {

uint16_t packed(const Pixel& pixel) {
    return static_cast<uint16_t>((pixel.red >> 3) << 10 | (pixel.green >> 3) << 5 | pixel.blue >> 3);
}

/// Five bits spread over eight, so that the ends stay the ends.
uint8_t spread(int bits) { return static_cast<uint8_t>(bits << 3 | bits >> 2); }

void store(const Pixel& pixel, int32_t depth, uint8_t* place) {
    if (depth == 8) {
        *place = pixel.blue;
    } else if (depth == 16) {
        const uint16_t word = packed(pixel);
        std::memcpy(place, &word, sizeof(word));
    } else {
        std::memcpy(place, &pixel, 3);
    }
}

Pixel load(const uint8_t* place, int32_t depth, uint8_t alpha) {
    if (depth == 8) return {*place, *place, *place, alpha};
    if (depth == 24) return {place[0], place[1], place[2], alpha};
    uint16_t word;
    std::memcpy(&word, place, sizeof(word));
    return {spread(word & 31), spread(word >> 5 & 31), spread(word >> 10 & 31), alpha};
}

/// Calls `work(pixel, place)` for every pixel of `image` and its place in `rows`.
template <class Image, class Bytes, class Work>
void forEachPlace(Image& image, Bytes* rows, int32_t depth, Work&& work) {
    const ptrdiff_t rowBytes = rowBytesOf(image.width, depth), pixelBytes = depth / 8;
    for (int32_t y = 0; y < image.height; ++y)
        for (int32_t x = 0; x < image.width; ++x) work(image.row(y)[x], rows + y * rowBytes + x * pixelBytes);
}

}  // namespace

int32_t rowBytesOf(int32_t width, int32_t depth) {
    return static_cast<int32_t>((int64_t{width} * depth / 8 + 3) / 4 * 4);
}

std::vector<uint8_t> shallowRows(const Bitmap& image, int32_t depth) {
    std::vector<uint8_t> rows(static_cast<size_t>(rowBytesOf(image.width, depth)) *
                              static_cast<size_t>(image.height));
    forEachPlace(image, rows.data(), depth,
                 [=](const Pixel& pixel, uint8_t* place) { store(pixel, depth, place); });
    return rows;
}

void takeShallowRows(const std::vector<uint8_t>& rows, int32_t depth, Bitmap& image) {
    forEachPlace(image, rows.data(), depth, [=](Pixel& pixel, const uint8_t* place) {
        uint8_t own[4] = {};
        store(pixel, depth, own);
        if (std::memcmp(own, place, static_cast<size_t>(depth / 8)) != 0)
            pixel = load(place, depth, pixel.alpha);
    });
}

}  // namespace krl::player
