#pragma once

#include "krlimage/engine.h"

/// Keys on hue, saturation and value. Each makes a matte, 0 on the key and 255 off it, and folds it
/// into alpha by `applyKeyMatte`; colour is only read.
namespace krl {

/// Keys on all three components at once: a pixel is on the key only as far as each of them is. Hue
/// is in degrees; saturation and value are picked on 0..1 with ranges in percent. A grey has no hue
/// and is judged by the other two.
Status chromaKey(ImageEngine& engine, float huePick, float innerHue, float outerHue, float satPick,
                 float innerSat, float outerSat, float valPick, float innerVal, float outerVal, bool keep,
                 bool invert);

/// Keys on the hue of `pColor` within `dynamicRange` of a turn to either side, without wrapping
/// around. `black` and `white` are the levels of distance where the matte starts and ends. Greys are
/// off the key.
Status hueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white, bool keep,
              bool invert);

/// Keys on the saturation of `pColor`, on the calling thread alone; the rest as for `hueKey`.
Status saturationKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                     bool keep, bool invert);

/// Keys on the value, the largest of the channels, of `pColor`; the rest as for `hueKey`.
Status valueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                bool keep, bool invert);

}  // namespace krl
