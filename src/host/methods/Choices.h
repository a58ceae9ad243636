#pragma once

#include <vector>

#include "composite/BlendMode.h"
#include "host/Method.h"

/// Symbols that many methods take.
namespace krl::host {

/// The three colours, or alpha alone.
inline std::vector<SymbolChoice> colourOrAlpha() {
    return {{"RGB", ChannelTarget::RGB}, {"Alpha", ChannelTarget::Alpha}};
}

/// The three colours, with alpha or without.
inline std::vector<SymbolChoice> colourWithAlpha() {
    return {{"RGB", ChannelTarget::RGB}, {"RGBA", ChannelTarget::RGBA}};
}

inline constexpr const char* kTargetMeaning = "the three colours, or transparency alone";

/// What methods that say nothing of a symbol they do not know work on then.
inline constexpr UnknownSymbol kElseAlpha = otherwise(ChannelTarget::Alpha);

/// The blend modes of the composites.
inline std::vector<SymbolChoice> compositeBlends() {
    std::vector<SymbolChoice> choices;
    for (const BlendSymbol& blend : kCompositeBlends) choices.emplace_back(blend.symbol, blend.mode);
    return choices;
}

/// Every blend mode that has a name, those included that have no arithmetic.
inline std::vector<SymbolChoice> allBlends() {
    std::vector<SymbolChoice> choices = compositeBlends();
    choices.insert(choices.end(), {{"pinlight", BlendMode::PinLight},
                                   {"hue", BlendMode::Hue},
                                   {"saturation", BlendMode::Saturation},
                                   {"color", BlendMode::Color}});
    return choices;
}

}  // namespace krl::host
