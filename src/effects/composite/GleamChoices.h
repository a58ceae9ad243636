#pragma once

#include <vector>

#include "catalogue/Choices.h"
#include "krlimage/composite.h"

/// Words, symbols and examples that the two gleams share.
namespace krl {

inline constexpr const char* kOpacityOfFront =
    "opacity of the foreground, 255 being full, on top of its own transparency";
inline constexpr const char* kOpacityOfLight = "opacity of the light, 255 being full";
inline constexpr const char* kBlackMeaning = "level of the foreground below which there is no light";
inline constexpr const char* kWhiteMeaning = "level from which the light is full";
inline constexpr const char* kGainMeaning = "0.0 leaves the light as it is, 1.0 drives all of it to white";
inline constexpr const char* kRampMeaning =
    "colours of the light by its level, in percent; one colour tints, none is grey";
inline constexpr const char* kColourMethodMeaning =
    "light in the foreground's own colours, or in those of the list";

/// Positions in percent become image levels as they are read.
inline constexpr ListKeys kLevelKeys{false, kLevelsPerPercent};

inline std::vector<SymbolChoice> colourMethods() {
    return {{"from_image", GleamColour::FromImage}, {"colourise_image", GleamColour::ColouriseImage}};
}

inline std::vector<ColourStop> warmRamp() {
    return {{0, Colour(0, 0, 0)}, {50, Colour(230, 110, 20)}, {100, Colour(255, 245, 200)}};
}

}  // namespace krl
