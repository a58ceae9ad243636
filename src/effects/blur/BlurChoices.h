#pragma once

#include "catalogue/Choices.h"

/// Ranges and words that entries of several blurs share.
namespace krl {

/// The radius of a blur. At 0 there is none; `kNeutralRadius` is of effects that are then the identity.
inline constexpr NumberRange kRadius{.from = 0, .to = 60, .example = 12, .least = 0, .pixels = true};
inline constexpr NumberRange kNeutralRadius{
    .from = 0, .to = 60, .example = 12, .least = 0, .neutral = 0, .pixels = true};
inline constexpr const char* kRadiusMeaning = "reach of the blur in pixels; 0 or less blurs nothing";

/// Settings of unsharp masking. Twice a difference is at most 510 levels, so a threshold of 511 keeps all.
inline constexpr NumberRange kSharpenRadius{.from = 0, .to = 60, .example = 5, .least = 0, .pixels = true};
inline constexpr NumberRange kThreshold{.from = 0, .to = 60, .example = 6, .least = 0, .most = 511};
inline constexpr const char* kSharpenRadiusMeaning = "reach of the blur in pixels";
inline constexpr const char* kAmountMeaning = "how much of the difference from the blur is added";
inline constexpr const char* kThresholdMeaning =
    "twice the difference, in levels, from which there is an edge to sharpen";

/// A target that none of the symbols gives: the blurs along a path pass it on without a failure.
inline constexpr UnknownSymbol kUnsetTarget = otherwise(ChannelTarget{});
constexpr bool isUnset(ChannelTarget target) {
    return target != ChannelTarget::RGBA && target != ChannelTarget::RGB && target != ChannelTarget::Alpha;
}

}  // namespace krl
