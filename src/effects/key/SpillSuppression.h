#pragma once

#include "effects/key/KeyColour.h"
#include "krlimage/engine.h"

namespace krl {

/// Takes the cast of a backing out of the colour bytes; alpha stays. The plain rule limits the key
/// channel by one other, red and green by blue and blue by green. The `extended` rule limits it by the
/// mean of the other two, and where it does may set one of those to the mean as well.
/// `transparency`, limited to 0..255, is how much of the correction is taken.
Status spillSupression(ImageEngine& engine, KeyColour spillColour, bool extended, int32_t transparency);

}  // namespace krl
