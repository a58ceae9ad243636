#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "catalogue/Arguments.h"

namespace krl {

/// Where a second picture of another size goes. Around it is transparency.
struct Placement {
    enum class Fit {
        None,     ///< its own size
        Contain,  ///< as large as fits into the picture
        Cover,    ///< as small as covers the picture
        Stretch,  ///< the picture's size, whatever the proportions
    };

    Fit fit = Fit::None;
    double scale = 1;            ///< applied after `fit`
    std::optional<Point> place;  ///< of its top left corner; missing for the middle
};

/// Whether an argument is `place`, `scale` or `fit`, which every method takes beside its own where it has a
/// second picture that it only reads.
bool isOfPlacement(const Method& method, std::string_view argument);

/// Takes these arguments out of `given`; nothing if none is there. Throws `ArgumentError`.
std::optional<Placement> takePlacement(const Method& method, std::vector<GivenArgument>& given);

/// The second picture on a transparent ground of the given size.
Picture placed(const Picture& second, const Placement& placement, int32_t width, int32_t height);

/// The same for every second picture among the arguments of a call that the method only reads.
void placePictures(const Method& method, const Placement& placement, int32_t width, int32_t height,
                   std::vector<Value>& arguments);

}  // namespace krl
