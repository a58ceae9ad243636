#pragma once

#include <functional>

#include "catalogue/Method.h"
#include "catalogue/Notation.h"

namespace krl {

/// The scope in which calls of the catalogue's methods are read for a picture of this size, without
/// parameters: lengths, points and the arguments of an `Extent` may be percentages. `enter` learns which
/// argument is read next, null for one that no method has.
NotationScope callScope(int32_t width, int32_t height,
                        std::function<void(const Argument* argument)> enter = {});

}  // namespace krl
