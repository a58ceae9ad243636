#pragma once

#include <vector>

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "player/lingo/Session.h"

namespace krl::player {

/// Runs methods of the catalogue on pictures, with an engine of its own; one belongs to one thread. No result
/// depends on the number of processors: a method whose definition contains the bands runs on one.
class CatalogueCalls {
public:
    explicit CatalogueCalls(ThreadChoice threads);

    /// Rewrites `picture`; a new picture that the method makes takes its place.
    CallOutcome apply(Bitmap& picture, const Method& method, const std::vector<krl::Value>& arguments);

private:
    ImageEngine engine_;
    const int32_t bands_;  ///< 0 for one for each processor
};

}  // namespace krl::player
