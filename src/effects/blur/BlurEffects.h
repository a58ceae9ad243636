#pragma once

#include <cstdint>

#include "krlimage/engine.h"
#include "krlimage/options.h"

/// Effects that are a blur, or a blur and what is done with it. The blurs on luma and colour
/// differences are in `ChromaBlur.h`, unsharp masking in `Sharpen.h`.
///
/// - `fastGaussianBlur`    the tent on a choice of bytes
/// - `blurProRGB`          each colour with a radius of its own
/// - `defocus`             a blur that lifts highlights
/// - `diffuse`             the sharp picture over its blur
/// - `oneChannelFeather`   a blur of alpha
/// - `blurColourReplace`   a tint; in spite of its name it blurs nothing
namespace krl {

/// Blurs the bytes of `target`; byte 0 alone for `Single`. A radius of 0 or less changes nothing.
Status fastGaussianBlur(ImageEngine& engine, int32_t radius, ChannelTarget target);

/// Blurs red, green and blue, each by its own radius; one of 0 or less leaves its colour sharp.
Status blurProRGB(ImageEngine& engine, int32_t blurR, int32_t blurG, int32_t blurB);

/// Blurs by `blur`, then lifts all colour by 1 / (1 - `bloom`), clipping highlights; `bloom` is
/// limited to 0..0.8. Alpha is blurred with `RGBA` and never lifted.
Status defocus(ImageEngine& engine, int32_t blur, float bloom, ChannelTarget target);

/// Lays the sharp picture over its blur with `opacity`, limited to 0..1.
Status diffuse(ImageEngine& engine, int32_t blur, float opacity, SampleQuality quality, ChannelTarget target);

/// Blurs alpha; colour stays.
Status oneChannelFeather(ImageEngine& engine, int32_t radius, SampleQuality quality);

/// Multiplies the picture by `colour`. Runs on the calling thread; `kStatusRefused` where no picture is
/// loaded.
Status blurColourReplace(ImageEngine& engine, Colour colour);

/// Blurs a block by `target`: whole pixels for `RGBA`, colour for `RGB`, else alpha.
void blurTarget(const ImageBuffer& block, int32_t radius, ChannelTarget target, int32_t threadCount);

}  // namespace krl
