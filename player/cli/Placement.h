#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "catalogue/Method.h"
#include "catalogue/Value.h"

namespace krl::player {

/// Where a second picture of another size goes: `place`, `scale` and `fit`. Around it is transparency.
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

/// Whether a call's argument is one of these: the method has a second picture, and no argument of that name.
bool isOfPlacement(const Method& method, std::string_view argument);

/// Sets what the argument says. Throws `CommandError` for a value of the wrong kind.
void setPlacement(Placement& placement, const Method& method, std::string_view argument, const Value& value);

/// The second picture on a transparent ground of the given size.
krl::Picture placed(const krl::Picture& second, const Placement& placement, int32_t width, int32_t height);

}  // namespace krl::player
