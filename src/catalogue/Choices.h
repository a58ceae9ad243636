#pragma once

#include <span>
#include <vector>

#include "catalogue/Method.h"
#include "kernels/blend/BlendMode.h"

/// Symbols that many methods take.
namespace krl {

/// The three colours, or alpha alone.
inline std::vector<SymbolChoice> colourOrAlpha() {
    return {{"RGB", ChannelTarget::RGB}, {"Alpha", ChannelTarget::Alpha}};
}

/// The three colours, with alpha or without.
inline std::vector<SymbolChoice> colourWithAlpha() {
    return {{"RGB", ChannelTarget::RGB}, {"RGBA", ChannelTarget::RGBA}};
}

/// All four channels, the three colours, or alpha alone.
inline std::vector<SymbolChoice> anyChannels() {
    return {{"RGBA", ChannelTarget::RGBA}, {"RGB", ChannelTarget::RGB}, {"Alpha", ChannelTarget::Alpha}};
}

inline constexpr const char* kTargetMeaning = "the three colours, or transparency alone";
inline constexpr const char* kChannelsMeaning = "all four channels, the three colours, or transparency alone";
inline constexpr const char* kWeighedMeaning =
    "all, with colours counting by their alpha; the three colours; or transparency alone";

/// Whether a key's matte lowers alpha or raises it.
inline std::vector<SymbolChoice> keepOrRemove() { return {{"keep", true}, {"remove", false}}; }
/// Whether the matte counts the other way round.
inline std::vector<SymbolChoice> invertOrNot() { return {{"true", true}, {"false", false}}; }

inline constexpr const char* kKeepMeaning = "keep only takes opacity away, remove only gives it back";

/// What methods that say nothing of a symbol they do not know work on then.
inline constexpr UnknownSymbol kElseAlpha = otherwise(ChannelTarget::Alpha);

/// Blend modes as choices of a symbol.
inline std::vector<SymbolChoice> blendChoices(std::span<const BlendSymbol> blends) {
    std::vector<SymbolChoice> choices;
    for (const BlendSymbol& blend : blends) choices.emplace_back(blend.symbol, blend.mode);
    return choices;
}

/// The blend modes of the composites.
inline std::vector<SymbolChoice> compositeBlends() { return blendChoices(kCompositeBlends); }

/// Those with which light is laid on: all but `noBlend`.
inline std::vector<SymbolChoice> lightBlends() { return blendChoices(kLightBlends); }

/// Every blend mode that has a name, those included that have no arithmetic.
inline std::vector<SymbolChoice> allBlends() {
    std::vector<SymbolChoice> choices = compositeBlends();
    choices.insert(choices.end(), {{"pinlight", BlendMode::PinLight},
                                   {"hue", BlendMode::Hue},
                                   {"saturation", BlendMode::Saturation},
                                   {"color", BlendMode::Color}});
    return choices;
}

/// The size tests of a composite's foreground.
inline constexpr ImageTests kCompositeSizes{"Invalid composite image height (Image)",
                                            "Invalid composite image width (Image)"};

}  // namespace krl
