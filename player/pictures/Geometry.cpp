#include "player/pictures/Geometry.h"

#include <algorithm>
#include <cmath>

#include "player/pictures/Formats.h"
#include "player/pictures/Scale.h"
#include "player/pictures/VipsChain.h"

namespace krl::player {

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

constexpr VipsAngle kQuarters[] = {VIPS_ANGLE_D0, VIPS_ANGLE_D90, VIPS_ANGLE_D180, VIPS_ANGLE_D270};

}  // namespace

Bitmap resized(const Bitmap& picture, int32_t width, int32_t height) {
    requirePictureSize("the resized picture", width, height);
    if (width == picture.width && height == picture.height) return picture;
    const std::string doing = "resize the picture";
    return worked(picture, doing, [&](VipsChain& chain) {
        chain.then(doing, [&](VipsImage* in, VipsImage** out) {
            return vips_thumbnail_image(in, out, width, "height", height, "size", VIPS_SIZE_FORCE, nullptr);
        });
    });
}

Bitmap turned(const Bitmap& picture, double degrees) {
    const std::string doing = "rotate the picture";
    const double quarters = degrees / 90;
    return worked(picture, doing, [&](VipsChain& chain) {
        if (quarters == std::round(quarters)) {
            const VipsAngle angle = kQuarters[static_cast<size_t>(std::lround(quarters) + 4) % 4];
            chain.then(doing,
                       [&](VipsImage* in, VipsImage** out) { return vips_rot(in, out, angle, nullptr); });
            return;
        }
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
    requirePictureSize("the resized picture", width, height);
    return scaled(picture, width, height);
}

Bitmap turned(const Bitmap& picture, double degrees) {
    const double quarters = degrees / 90;
    if (quarters != std::round(quarters))
        throw PictureError("this build rotates by multiples of 90 degrees only");
    Bitmap result = picture;
    for (long turns = (std::lround(quarters) + 4) % 4; turns > 0; --turns) {
        const Bitmap before = result;
        std::swap(result.width, result.height);
        for (int32_t y = 0; y < result.height; ++y)
            for (int32_t x = 0; x < result.width; ++x)
                result.row(y)[x] = before.row(before.height - 1 - x)[y];
    }
    return result;
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
    return degrees == 0 ? picture : turned(picture, degrees);
}

}  // namespace krl::player
