#pragma once

#include <span>

#include "effects/composite/Gleam.h"
#include "krlimage/engine.h"
#include "krlimage/options.h"

namespace krl {

/// The gleam as rays: the bright parts of `foreground` run from `zoomPoint` to every pixel of the border
/// and fade on their way, and what they leave is laid, over the foreground itself, on the image.
///
/// A ray carries a sum of the light it has met, `brightnessStrength` times as bright; `falloff`, from 0 to 1,
/// is what is left of it after 30 steps. Within `userDistance` of the centre a ray shines as if it had run
/// there already, and the sum counts by that distance. The first ray to reach a pixel decides it; rays are
/// cast one after another, so that pictures repeat.
Status gleamZoomComposite(ImageEngine& engine, const SecondImage& foreground, BlendMode compositeBlendMethod,
                          int32_t compositeTransparency, int32_t black, int32_t white, Point zoomPoint,
                          float brightnessStrength, float falloff, BlendMode blendMethod,
                          float levelsBrightness, int32_t transparency, std::span<const CurveKey> colorList,
                          GleamColour colourMethod, SampleQuality quality, int32_t userDistance);

}  // namespace krl
