#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "catalogue/Arguments.h"
#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"

namespace krl {

/// Part of a picture, in pixels; `right` and `bottom` are just outside.
struct Region {
    int32_t left = 0, top = 0, right = 0, bottom = 0;
};

/// Where and how much a call changes the picture. Each pixel becomes its old value plus a share of the
/// change, the product of all that is given here; the share is a level of 255, and every step rounds to the
/// nearest.
struct Extent {
    double mix = 1;               ///< share everywhere, 0 to 1
    std::optional<Picture> mask;  ///< share by the mean colour of its pixels: white all, black none
    std::optional<Region> region;
    int32_t feather = 0;  ///< pixels inside the region's border over which the share grows to full

    bool isWhole() const { return mix >= 1 && !mask && !region; }
};

/// The arguments that every method takes beside its own where it rewrites the picture: `mix`, `mask`,
/// `region` and `feather`. They are taken out of `given` unless the method has its own of that name. Throws
/// `ArgumentError`.
Extent takeExtent(const Method& method, std::vector<GivenArgument>& given);

/// How these arguments take a percentage; nothing for other names.
std::optional<PercentKind> percentOfExtent(std::string_view argument);

/// Runs `call`, which rewrites `picture`, and leaves of the change what is within `extent`. Throws
/// `ArgumentError` for a mask of another size. `picture` and the mask have no padding.
CallResult callWithin(const Extent& extent, const Picture& picture, const std::function<CallResult()>& call);

}  // namespace krl
