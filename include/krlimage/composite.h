#pragma once

#include <span>

#include "krlimage/engine.h"
#include "krlimage/options.h"

/// Effects that lay a second picture, or light, over the loaded one. Where the words are "transparency" the
/// number is an opacity: 255 is full strength. Each gives `kStatusNoImage` or `kStatusNoPixels` where there
/// is no picture.
namespace krl {

/// How a composite treats the background's alpha.
enum class AlphaRule : int32_t {
    BackgroundAlphaNo = 58,  ///< the shift form: the foreground's alpha is an opacity, the background's stays
    BackgroundAlphaYes = 59,  ///< straight alpha over straight alpha
};

/// Lays `foreground`, of the image's own size, over the image in mode `blendMethod`.
/// `kStatusForegroundSize` where it has another size.
Status composite(ImageEngine& engine, const SecondImage& foreground, BlendMode blendMethod,
                 AlphaRule backgroundAlpha);

/// Where a gleam's light has its colour from.
enum class GleamColour : int32_t {
    FromImage = 54,
    ColouriseImage = 55,  ///< from the colour list, by the light's level; grey where the list is empty
};

struct GleamBlurSettings {
    BlendMode compositeBlendMethod = BlendMode::Normal;  ///< how the foreground meets the image
    int32_t compositeTransparency = 255;                 ///< opacity of the foreground, 0 to 255
    int32_t blackPoint = 0;                              ///< level below which there is no light, 0 to 255
    int32_t whitePoint = 255;                            ///< level above which light is full, 0 to 255
    int32_t blur = 0;                                    ///< how far the light spreads; none up to 0
    BlendMode blendMethod = BlendMode::Add;              ///< how the light is laid on
    float brightness = 0;                      ///< drives the light toward white, from 0 for unchanged to 1
    int32_t transparency = 255;                ///< opacity of the light, 0 to 255
    std::span<const CurveKey> colorList = {};  ///< at levels 0 to 255
    GleamColour colourMethod = GleamColour::FromImage;
};

/// Softens the bright parts of `foreground` by `blur` and lays them, over the foreground itself, on the
/// image. `kStatusNoImage` without a foreground, `kStatusForegroundSize` where it has another size.
Status gleamBlurComposite(ImageEngine& engine, const SecondImage& foreground,
                          const GleamBlurSettings& settings);

struct GleamZoomSettings {
    BlendMode compositeBlendMethod = BlendMode::Normal;  ///< how the foreground meets the image
    int32_t compositeTransparency = 255;                 ///< opacity of the foreground, 0 to 255
    int32_t black = 0;                                   ///< level below which there is no light, 0 to 255
    int32_t white = 255;                                 ///< level above which light is full, 0 to 255
    Point zoomPoint = {};                                ///< where the rays begin; it may lie outside
    float brightnessStrength = 1;              ///< how much each bright pixel gives to a ray; 0 or more
    float falloff = 0.5f;                      ///< what is left of a ray after 30 pixels, 0 to 1
    BlendMode blendMethod = BlendMode::Add;    ///< how the light is laid on
    float levelsBrightness = 0;                ///< drives the light toward white, from 0 for unchanged to 1
    int32_t transparency = 255;                ///< opacity of the light, 0 to 255
    std::span<const CurveKey> colorList = {};  ///< at levels 0 to 255
    GleamColour colourMethod = GleamColour::FromImage;
    SampleQuality quality = SampleQuality::Standard;  ///< `Antialiased` casts the rays at double the size
    int32_t userDistance = 10;                        ///< 0 leaves no light
};

/// The gleam as rays: the bright parts of `foreground` run from `zoomPoint` to every pixel of the border and
/// fade on their way, and what they leave is laid, over the foreground itself, on the image.
///
/// A ray carries a sum of the light it has met. Within `userDistance` of the centre a ray shines as if it
/// had run there already, and the sum is divided by that distance. The first ray to reach a pixel decides
/// it; rays are cast one after another, so that pictures repeat. `kStatusNoImage` without a foreground,
/// `kStatusForegroundSize` where it has another size, which is tested first.
Status gleamZoomComposite(ImageEngine& engine, const SecondImage& foreground,
                          const GleamZoomSettings& settings);

/// Puts `background` where it is opaque and lets the image's light bleed over its edges: the image,
/// blurred by `blur` together with the reach of the background's holes, is blended onto the background in
/// `blendMethod`, and the two go over the image. `kStatusMaskSize` where the background has another size,
/// `kStatusNoImage` without one.
Status lightSpillComposite(ImageEngine& engine, const SecondImage& background, int32_t blur,
                           BlendMode blendMethod);

struct OuterGlowSettings {
    int32_t coreFeather = 0;                          ///< softness of the core; none up to 0
    int32_t expandBlur = 0;                           ///< how far the halo grows; not at all up to 0
    int32_t outerBlur = 0;                            ///< softness of the halo; none up to 0
    std::span<const CurveKey> outerColours = {};      ///< of the halo, positions in percent
    std::span<const CurveKey> coreColours = {};       ///< of the core, positions in percent
    int32_t intensity = 255;                          ///< level at which the halo is full, 0 to 255
    int32_t coreTransparency = 0;                     ///< 0 keeps the core whole, 255 shows the halo alone
    SampleQuality quality = SampleQuality::Standard;  ///< changes nothing
};

/// Turns the image's alpha into a coloured halo with a coloured core: the halo is the image's shape, grown
/// and softened, the core the shape softened. One colour in a list colours its part evenly; two or more are
/// a ramp over alpha.
Status outerGlow(ImageEngine& engine, const OuterGlowSettings& settings);

}  // namespace krl
