#pragma once

#include <cstdint>

#include "core/Scratch.h"
#include "krlimage/pixel.h"
#include "krlimage/status.h"

namespace krl {

/// The one blur under every soft-focus effect: a triangular window, first along the rows, then down
/// the columns, at a cost per pixel that does not depend on the radius.
///
/// The window reaches 0.72 of `radius`, rounded, to each side and falls off in a straight line.
/// Beyond the block's edges the nearest sample repeats. Both passes truncate. Colour is not weighted
/// by alpha. Blocks are tightly packed, `height` rows of `width`; `height` comes first. A radius
/// whose window is a single sample, and every negative one, changes nothing. The bytes do not
/// depend on `threadCount`.
///
/// If threads cannot start the blur is silently skipped, but for `blurChannel`. If memory runs out
/// `std::bad_alloc` is thrown with the block as it was.
class TentBlur {
public:
    /// `threadCount` is the engine's: how many bands run at once.
    explicit TentBlur(int32_t threadCount) : threadCount_(threadCount < 1 ? 1 : threadCount) {}

    /// All four bytes.
    void blurRGBA(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// The colour bytes; alpha stays.
    void blurRGB(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Alpha; the colour bytes stay.
    void blurAlpha(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Bytes 0 and 1; the others stay.
    void blurChroma(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Byte 0; the others stay.
    void blurSingle(Pixel* pixels, int32_t height, int32_t width, int32_t radius);
    /// Whole pixels for `RGBA`, colour for `RGB`, else alpha.
    void blurTarget(Pixel* pixels, int32_t height, int32_t width, int32_t radius, ChannelTarget target);
    /// A plane of any signed integers, divided toward zero. From here on this object runs all its
    /// kernels on the calling thread.
    void blurPlane(int32_t* plane, int32_t height, int32_t width, int32_t radius);

    /// Byte `channel` of every pixel, 0 to 3; the others stay. Returns why threads could not start.
    Status blurChannel(Pixel* pixels, int32_t height, int32_t width, int32_t radius, int32_t channel);
    /// A plane of bytes.
    void blurBytes(uint8_t* plane, int32_t height, int32_t width, int32_t radius);

    int32_t threadCount() const { return threadCount_; }

private:
    template <class Layout>
    Status blurLayout(uint8_t* block, int32_t height, int32_t width, int32_t radius, const Layout& layout);

    int32_t threadCount_;
    Scratch<uint8_t>
        lines_;  ///< the row pass's output and its bands' room; kept, so that several blurs take it once
};

}  // namespace krl
