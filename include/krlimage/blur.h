#pragma once

#include <cstdint>

#include "krlimage/engine.h"
#include "krlimage/options.h"

/// Blurs, and sharpening by what a blur takes away.
///
/// Every effect first tests the state: `kStatusNoImage` without a picture, `kStatusNoPixels` for one without
/// pixels. `kStatusNoTaskMemory` or `kStatusThreadFailed` says that a band could not be started. A plain blur
/// whose threads cannot start is silently skipped. A radius is in pixels; the window of a blur reaches 0.72
/// of it to each side and falls off in a straight line.
namespace krl {

/// How `yuvBlur` softens the colour differences.
enum class ChromaBlurType : int32_t {
    Horizontal = 60,  ///< a mean along the rows
    Vertical = 61,    ///< a mean down the columns
    Box = 62,         ///< both, rows first
    Gaussian = 63,    ///< the tent
};

/// Trails of `motionBlur`.
enum class BlurCount : int32_t {
    Single = 15,  ///< to one side
    Double = 16,  ///< a second blur, in the opposite direction, over the first
};

/// Which way `zoomBlur` gathers along the ray.
enum class ZoomDirection : int32_t {
    In = 17,   ///< away from the point
    Out = 18,  ///< toward the point, and on past it
};

// Blurs of bytes.

/// Blurs the bytes of `target`; byte 0 alone for `Single`. A radius of 0 or less changes nothing.
Status fastGaussianBlur(ImageEngine& engine, int32_t radius, ChannelTarget target);

/// Blurs red, green and blue, each by its own radius; one of 0 or less leaves its colour sharp.
Status blurProRGB(ImageEngine& engine, int32_t blurR, int32_t blurG, int32_t blurB);

/// Blurs alpha; colour stays. Both qualities give the same picture.
Status oneChannelFeather(ImageEngine& engine, int32_t radius, SampleQuality quality);

/// Blurs by `blur`, then multiplies all colour by 1 / (1 - `bloom`), which clips highlights; `bloom` is
/// limited to 0..0.8. Alpha is blurred with `RGBA` and never lifted.
Status defocus(ImageEngine& engine, int32_t blur, float bloom, ChannelTarget target);

/// Lays the sharp picture over its blur with `opacity`, limited to 0..1. Both qualities give the same
/// picture.
Status diffuse(ImageEngine& engine, int32_t blur, float opacity, SampleQuality quality, ChannelTarget target);

// Blurs of luma and colour differences. All pixels pass through the conversion and back, which is not
// lossless; alpha stays.

/// Blurs luma by `blurY` and the two colour differences by `blurU` and `blurV`; a radius of 0 or less leaves
/// its plane sharp.
Status blurProYUV(ImageEngine& engine, int32_t blurY, int32_t blurU, int32_t blurV);

/// Blurs the colour differences by `blurAmount` and leaves luma sharp; an amount of 0 or less leaves only the
/// conversion. For `Vertical` and `Box` the result depends on the number of bands.
Status yuvBlur(ImageEngine& engine, ChromaBlurType blurType, int32_t blurAmount);

// Blurs that average samples along a path through each pixel. A sample outside the picture is the nearest one
// inside. With `RGBA` colours count by their alpha, so that transparent pixels do not bleed in; with `RGB` or
// `Alpha` the bytes alone are averaged and the others stay.

/// Averages the pixel and what follows it in direction `angle` (degrees), `distance` samples one pixel apart;
/// a distance of 0 or less changes nothing. Where all samples are transparent, `RGBA` leaves a pixel as it
/// was. Any target but `RGBA` and `RGB` is `Alpha`.
Status motionBlur(ImageEngine& engine, int32_t distance, int32_t angle, BlurCount blurCount,
                  ChannelTarget target);

/// Averages an arc of `radialLength` degrees to each side about `radialPoint`, a sample for each degree; a
/// length below 1 changes nothing. Where all samples are transparent, `RGBA` leaves a pixel as it was. A
/// target of no kind writes nothing.
Status radialBlur(ImageEngine& engine, int32_t radialLength, Point radialPoint, ChannelTarget target);

/// Averages along the ray from `zoomPoint`, one pixel apart, as many samples as the distance from the point
/// times `zoomLength` over the picture's diagonal. A pixel that gets none stays as it was. A target of no
/// kind writes nothing.
Status zoomBlur(ImageEngine& engine, int32_t zoomLength, Point zoomPoint, ZoomDirection direction,
                ChannelTarget target);

// Unsharp masking: the difference between the picture and its blur, added to the picture.

/// Moves every byte of `target` away from its blur by `amount` times their difference, where twice the
/// difference reaches `threshold` levels. A `radius` of 0 or less, or an `amount` of 0, changes nothing.
Status sharpen(ImageEngine& engine, int32_t radius, float amount, int32_t threshold, ChannelTarget target);

/// The same on luma alone; all pixels pass through the conversion to luma and colour differences and back.
Status sharpenBrightness(ImageEngine& engine, int32_t radius, float amount, int32_t threshold);

}  // namespace krl
