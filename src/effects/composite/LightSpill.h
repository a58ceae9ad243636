#pragma once

#include "kernels/blend/BlendMode.h"
#include "krlimage/engine.h"

namespace krl {

/// Puts `background` where it is opaque and lets the image's light bleed over its edges: the image,
/// blurred by `blur` together with the reach of the background's holes, is blended onto the background in
/// `blendMethod`, and the two go over the image.
Status lightSpillComposite(ImageEngine& engine, const SecondImage& background, int32_t blur,
                           BlendMode blendMethod);

}  // namespace krl
