#include "player/pictures/Geometry.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "player/pictures/Formats.h"
#include "player/pictures/Scale.h"
#include "player/pictures/VipsChain.h"

namespace krl::player {

namespace {

/// Turned clockwise by a number of right angles, from 0 to 3.
Bitmap turnedByQuarters(const Bitmap& picture, long quarters) {
    Bitmap result = picture;
    if (quarters == 2) std::reverse(result.pixels.begin(), result.pixels.end());
    if (quarters % 2 == 0) return result;
    std::swap(result.width, result.height);
    const int32_t right = picture.width - 1, bottom = picture.height - 1;
    // In squares, so that the rows that one row of the result is made of stay in the cache.
    constexpr int32_t kSide = 32;
    for (int32_t top = 0; top < result.height; top += kSide)
        for (int32_t left = 0; left < result.width; left += kSide)
            for (int32_t y = top; y < std::min(top + kSide, result.height); ++y)
                for (int32_t x = left; x < std::min(left + kSide, result.width); ++x)
                    result.row(y)[x] = quarters == 1 ? picture.row(bottom - x)[y] : picture.row(x)[right - y];
    return result;
}

/// The right angles in an angle from -360 to 360 degrees; none for one in between.
std::optional<long> quartersOf(double degrees) {
    const double quarters = degrees / 90;
    if (quarters != std::round(quarters)) return std::nullopt;
    return (std::lround(quarters) + 4) % 4;
}

}  // namespace

#if defined(KRL_WITH_VIPS)

namespace {

/// Runs operations of libvips on the pixels; `work` takes the chain and throws `PictureError`.
template <class Work>
Bitmap worked(const Bitmap& picture, const std::string& doing, const Work& work) {
    startVips();
    return tellingItsOwnReason([&] {
        // None of the operations needs to know that blue comes first.
        VipsImage* wrapped =
            vips_image_new_from_memory(picture.pixels.data(), picture.pixels.size() * sizeof(Pixel),
                                       picture.width, picture.height, 4, VIPS_FORMAT_UCHAR);
        if (!wrapped) failAt(doing);
        VipsChain chain(wrapped);
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            return vips_copy(in, out, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr);
        });
        work(chain);
        size_t bytes = 0;
        void* memory = vips_image_write_to_memory(chain.get(), &bytes);
        if (!memory) failAt(doing);
        const auto* first = static_cast<const Pixel*>(memory);
        Bitmap result{vips_image_get_width(chain.get()), vips_image_get_height(chain.get()),
                      std::vector<Pixel>(first, first + bytes / sizeof(Pixel)), picture.metadata};
        g_free(memory);
        return result;
    });
}

}  // namespace

Bitmap resized(const Bitmap& picture, int32_t width, int32_t height) {
    requirePossibleSize("the resized picture", width, height);
    if (width == picture.width && height == picture.height) return picture;
    const std::string doing = "resize the picture";
    return worked(picture, doing, [&](VipsChain& chain) {
        chain.then(doing, [&](VipsImage* in, VipsImage** out) {
            return vips_thumbnail_image(in, out, width, "height", height, "size", VIPS_SIZE_FORCE, nullptr);
        });
    });
}

Bitmap turned(const Bitmap& picture, double degrees) {
    if (const std::optional<long> quarters = quartersOf(degrees)) return turnedByQuarters(picture, *quarters);
    const std::string doing = "rotate the picture";
    return worked(picture, doing, [&](VipsChain& chain) {
        chain.then(doing, [](VipsImage* in, VipsImage** out) { return vips_premultiply(in, out, nullptr); });
        chain.then(doing,
                   [&](VipsImage* in, VipsImage** out) { return vips_rotate(in, out, degrees, nullptr); });
        chain.then(doing,
                   [](VipsImage* in, VipsImage** out) { return vips_unpremultiply(in, out, nullptr); });
        // Add a half, since the cast truncates.
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            return vips_linear1(in, out, 1.0, 0.5, "uchar", TRUE, nullptr);
        });
    });
}

#else

Bitmap resized(const Bitmap& picture, int32_t width, int32_t height) {
    requirePossibleSize("the resized picture", width, height);
    return scaled(picture, width, height);
}

Bitmap turned(const Bitmap& picture, double degrees) {
    if (const std::optional<long> quarters = quartersOf(degrees)) return turnedByQuarters(picture, *quarters);
    throw PictureError("this build rotates by multiples of 90 degrees only");
}

#endif

Bitmap partOf(const Bitmap& picture, int32_t left, int32_t top, int32_t width, int32_t height) {
    Bitmap part{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), picture.metadata};
    for (int32_t y = 0; y < height; ++y) std::copy_n(picture.row(top + y) + left, width, part.row(y));
    return part;
}

Bitmap upright(Bitmap picture, int orientation) {
    constexpr double kDegrees[] = {0, 0, 180, 180, 270, 90, 90, 270};  // after mirroring, if any
    const bool isMirrored = orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
    for (int32_t y = 0; isMirrored && y < picture.height; ++y)
        std::reverse(picture.row(y), picture.row(y) + picture.width);
    const double degrees = kDegrees[orientation - 1];
    if (degrees == 0) return picture;
    return turned(picture, degrees);
}

}  // namespace krl::player
