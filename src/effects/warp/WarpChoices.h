#pragma once

#include <vector>

#include "catalogue/Choices.h"
#include "krlimage/options.h"

/// Words that the warps share.
namespace krl {

inline constexpr const char* kQualityMeaning = "the nearest pixel, or a mean of the four around the place";
inline constexpr const char* kFrequencyMeaning =
    "degrees of the wave for each pixel; 360 / frequency pixels make one wave";

inline std::vector<SymbolChoice> warpQualities() {
    return {{"standard", SampleQuality::Standard}, {"bilinear", SampleQuality::Bilinear}};
}

}  // namespace krl
