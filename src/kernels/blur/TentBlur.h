#pragma once

#include <cstdint>

#include "core/ChannelMask.h"
#include "core/ImageCopy.h"
#include "core/Scratch.h"
#include "krlimage/engine.h"

namespace krl {

/// The one blur under every soft-focus effect: a triangular window, first along the rows, then down
/// the columns, at a cost per pixel that does not depend on the radius.
///
/// The window reaches 0.72 of `radius`, rounded, to each side and falls off in a straight line.
/// Beyond the block's edges the nearest sample repeats. Both passes truncate. Colour is not weighted
/// by alpha. Blocks are tightly packed, `height` rows of `width`; `height` comes first. A radius
/// whose window is a single sample, and every negative one, changes nothing. The bytes do not
/// depend on the number of bands.
///
/// The status says whether a required thread could not start, which leaves the block unblurred or half
/// blurred. If memory runs out `std::bad_alloc` is thrown with the block as it was.
class TentBlur {
public:
    /// Runs on the engine's bands and ends when it is cancelled; `engine` must outlive this object.
    explicit TentBlur(const ImageEngine& engine) : TentBlur(engine, engine.requiresThreads()) {}
    /// The same for an effect whose definition blurs on one thread: it requires no others, even if the engine
    /// does, and takes those that there are.
    TentBlur(const ImageEngine& engine, bool requiresThreads)
        : engine_(engine), requiresThreads_(requiresThreads) {}

    /// All four bytes.
    Status blurRGBA(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// The colour bytes; alpha stays.
    Status blurRGB(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Alpha; the colour bytes stay.
    Status blurAlpha(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Bytes 0 and 1; the others stay.
    Status blurChroma(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Byte 0; the others stay.
    Status blurSingle(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Whole pixels for `RGBA`, colour for `RGB`, else alpha.
    Status blurTarget(Pixel* pixels, int32_t height, int32_t width, int32_t radius, ChannelTarget target);
    /// `blurTarget` of an image into a block of its geometry, which gets the other bytes too. If a required
    /// thread cannot start it becomes a copy.
    Status blurInto(const ScratchImage& copy, const ImageBuffer& image, int32_t radius, ChannelTarget target);
    /// Byte `channel` of every pixel, 0 to 3; the others stay.
    Status blurChannel(Pixel* pixels, int32_t height, int32_t width, int32_t radius, int32_t channel);
    /// A plane of bytes.
    Status blurBytes(uint8_t* plane, int32_t height, int32_t width, int32_t radius);

private:
    Status blurPixels(const Pixel* from, Pixel* to, int32_t height, int32_t width, int32_t radius,
                      ChannelMask mask);
    Status blurBeside(const Pixel* from, Pixel* to, int32_t height, int32_t width, int32_t radius,
                      ChannelTarget target);
    template <class Layout>
    Status blurLayout(const uint8_t* from, uint8_t* to, int32_t height, int32_t width, int32_t radius,
                      const Layout& layout);

    const ImageEngine& engine_;
    bool requiresThreads_;
    Scratch<uint8_t> lines_;  ///< blurred rows and the bands' room; kept, so that several blurs take it once
};

}  // namespace krl
