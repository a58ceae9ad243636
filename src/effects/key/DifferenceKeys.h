#pragma once

#include "effects/key/KeyColour.h"
#include "krlimage/engine.h"

/// Keys against a backing of one pure colour, by how far its channel stands above the other two.
/// Their matte is 255 on the backing and 0 off it; it is folded into alpha by `applyKeyMatte`, so
/// that `keep` without `invert` clears the backing. Colour is only read.
namespace krl {

/// The difference stretched between `blackValue` and `whiteValue`.
Status colourDifference(ImageEngine& engine, KeyColour differenceColour, int32_t blackValue,
                        int32_t whiteValue, bool keep, bool invert);

/// The difference stretched by its own range, held back where the picture is darker than the
/// backing and where an edge crosses it. Contrasts of 0 stretch between the extremes found, 0.5 makes
/// a step. Runs on the calling thread alone.
Status colourDifferenceExtended(ImageEngine& engine, KeyColour colorSymbol, float colorRange,
                                float edgeContast, float luminocityContrast, float colorDifferenceContrast,
                                bool keep, bool invert);

/// Finds which backing the picture has: blue where more pixels are foremost blue than green, else
/// green. Reads the picture only.
Status autoColor(const ImageEngine& engine, KeyColour& found);

/// How the automatic keys read a picture.
struct AutoKeySettings {
    KeyColour userColor = KeyColour::Auto;
    float userDetail = 0;    ///< -1..1: where the stretch ends, from the middle of the range to the mean
    float userGrey = 0;      ///< 0..1: below this difference of channels a pixel fades as a grey
    float thresholdVal = 0;  ///< the share of `userGrey` below which it is one
};

/// A key whose stretch comes from the picture; alpha becomes what is left beside the backing,
/// whatever was there. `used` is the colour that was keyed.
Status autoColorDifference(ImageEngine& engine, const AutoKeySettings& settings, KeyColour& used);

/// The same, folded into the alpha that is there.
Status autoColorDifferenceCharger(ImageEngine& engine, const AutoKeySettings& settings, bool keep,
                                  bool invert, KeyColour& used);

}  // namespace krl
