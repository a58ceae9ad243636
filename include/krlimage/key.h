#pragma once

#include "krlimage/engine.h"

/// Keys: each makes a matte from the colours and folds it into alpha; colour is only read. `keep` only lowers
/// alpha, its opposite only raises it; `invert` takes the matte the other way round. Each gives
/// `kStatusNoImage` or `kStatusNoPixels` where there is no picture, and `kStatusRefused` where that is noted.
namespace krl {

/// The pure colour of a backing. `Auto` is only ever an argument: it is resolved before any pixel is keyed.
enum class KeyColour : int32_t { Red = 21, Green = 22, Blue = 23, Auto = 81 };

/// What counts as the key in one component.
struct KeyRange {
    float pick = 0;   ///< the middle
    float inner = 0;  ///< to either side, keyed in full
    float outer = 0;  ///< beyond that, fading out
};

/// Keys on all three components at once: a pixel is on the key only as far as each of them is. The matte is 0
/// on the key and 255 off it. `hue` is in degrees, 0 to 360; saturation and value are picked on 0 to 1 with
/// ranges in percent. A grey has no hue and is judged by the other two.
Status chromaKey(ImageEngine& engine, const KeyRange& hue, const KeyRange& saturation, const KeyRange& value,
                 bool keep, bool invert);

/// Keys on the hue of `pColor` within `dynamicRange` of a turn, 0 to 1, to either side, without wrapping
/// around. `black` and `white` are the levels of distance, 0 to 255, where the matte starts and ends. The
/// matte is 0 on the key and 255 off it. Greys are off the key.
Status hueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white, bool keep,
              bool invert);

/// Keys on the saturation of `pColor`, on the calling thread alone; the rest as for `hueKey`, but that a
/// missing picture is `kStatusRefused`.
Status saturationKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                     bool keep, bool invert);

/// Keys on the value, the largest of the channels, of `pColor`; the rest as for `hueKey`.
Status valueKey(ImageEngine& engine, Colour pColor, float dynamicRange, int32_t black, int32_t white,
                bool keep, bool invert);

/// Keys against a backing of one pure colour, by how far its channel exceeds the larger of the other two,
/// stretched between `blackValue` and `whiteValue`. The matte of this key and of those below is 255 on the
/// backing and 0 off it, so that `keep` without `invert` clears the backing.
Status colourDifference(ImageEngine& engine, KeyColour differenceColour, int32_t blackValue,
                        int32_t whiteValue, bool keep, bool invert);

/// Contrasts of 0 stretch between the extremes found; 0.5 makes a step.
struct ColourDifferenceContrasts {
    float colorRange = 0;               ///< how readily a pixel counts as certain backing
    float edgeContast = 0;              ///< of edges
    float luminocityContrast = 0;       ///< 0 to 1: how quickly what is darker than the backing drops out
    float colorDifferenceContrast = 0;  ///< of the difference itself
};

/// The difference stretched by its own range, held back where the picture is darker than the backing and
/// where an edge crosses it. Runs on the calling thread alone. `kStatusRefused` where there is no picture.
Status colourDifferenceExtended(ImageEngine& engine, KeyColour colorSymbol,
                                const ColourDifferenceContrasts& contrasts, bool keep, bool invert);

/// Finds which backing the picture has: blue where more pixels are foremost blue than green, else green.
/// Reads the picture only.
Status autoColor(const ImageEngine& engine, KeyColour& found);

/// How the automatic keys read a picture.
struct AutoKeySettings {
    KeyColour userColor = KeyColour::Auto;
    float userDetail = 0;    ///< -1..1: where the stretch ends, from the middle of the range to the mean
    float userGrey = 0;      ///< 0..1: below this difference of channels a pixel fades as a grey
    float thresholdVal = 0;  ///< the share of `userGrey` below which it is one
};

/// A key whose stretch comes from the picture; alpha becomes what is left beside the backing, whatever it
/// was. `used` is the colour that was keyed.
Status autoColorDifference(ImageEngine& engine, const AutoKeySettings& settings, KeyColour& used);

/// The same, folded into the alpha that is there.
Status autoColorDifferenceCharger(ImageEngine& engine, const AutoKeySettings& settings, bool keep,
                                  bool invert, KeyColour& used);

/// Takes the cast of a backing out of the colour bytes; alpha stays. The plain rule limits the key channel
/// by one other, red and green by blue and blue by green. The `extended` rule limits it by the mean of the
/// other two, and where it does may set one of those to the mean as well. `transparency`, 0 to 255, is how
/// much of the correction is taken.
Status spillSupression(ImageEngine& engine, KeyColour spillColour, bool extended, int32_t transparency);

}  // namespace krl
