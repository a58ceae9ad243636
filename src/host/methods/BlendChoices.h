#pragma once

#include <span>
#include <vector>

#include "composite/BlendMode.h"
#include "host/Method.h"

/// What the methods that lay pictures over one another have in common.
namespace krl::host {

/// The size tests of a foreground.
inline constexpr ImageTests kCompositeSizes{"Invalid composite image height (Image)",
                                            "Invalid composite image width (Image)"};

/// Blend modes as choices of a symbol.
inline std::vector<SymbolChoice> blendChoices(std::span<const BlendSymbol> blends) {
    std::vector<SymbolChoice> choices;
    for (const BlendSymbol& blend : blends) choices.emplace_back(blend.symbol, blend.mode);
    return choices;
}

}  // namespace krl::host
