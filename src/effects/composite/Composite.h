#pragma once

#include "kernels/blend/BlendMode.h"
#include "krlimage/engine.h"

/// The blend compositor: a second picture laid over the loaded one.
///
/// - `composite`: in any blend mode, with or without regard to the background's own alpha
namespace krl {

/// How a composite treats the background's alpha.
enum class AlphaRule : int32_t {
    BackgroundAlphaNo = 58,  ///< the shift form: the foreground's alpha is an opacity, the background's stays
    BackgroundAlphaYes = 59,  ///< straight alpha over straight alpha
};

/// Lays `foreground`, of the image's own size, over the image in mode `blendMethod`.
Status composite(ImageEngine& engine, const SecondImage& foreground, BlendMode blendMethod,
                 AlphaRule backgroundAlpha);

}  // namespace krl
