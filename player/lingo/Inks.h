#pragma once

#include "player/lingo/Runtime.h"

/// How `copyPixels` combines a pixel of the source with one of the target.
namespace krl::player {

enum class Ink {
    Copy = 0,
    Transparent = 1,
    Reverse = 2,
    Ghost = 3,
    NotCopy = 4,
    NotTransparent = 5,
    NotReverse = 6,
    NotGhost = 7,
    Matte = 8,
    Mask = 9,
    Blend = 32,
    AddPin = 33,
    Add = 34,
    SubtractPin = 35,
    BackgroundTransparent = 36,
    Lightest = 37,
    Subtract = 38,
    Darkest = 39,
    Lighten = 40,
    Darken = 41,
};

/// The ink of that name or number; throws `HostError` if there is none.
Ink inkOf(const Runtime& runtime, const Value& value);

/// The settings that an ink works with.
struct InkColours {
    Pixel front{0, 0, 0, 255};
    Pixel back{255, 255, 255, 255};
    bool tinted = false;  ///< black and white of the source become front and back
};

/// The colour to lay over `below`; false to leave `below` as it is.
bool inked(Ink ink, const InkColours& colours, const Pixel& source, const Pixel& below, Pixel& result);

}  // namespace krl::player
