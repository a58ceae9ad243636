#pragma once

#include <span>
#include <vector>

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "core/Scratch.h"
#include "look/FusedCalls.h"
#include "player/cli/LookFiles.h"
#include "player/lingo/Session.h"

namespace krl::player {

/// Runs methods of the catalogue on pictures with its own engine; use each object from one thread only. No
/// result depends on the number of processors: methods whose definition involves the bands run on one band.
class CatalogueCalls {
public:
    explicit CatalogueCalls(ThreadChoice threads);

    /// Keeps the working memory of a call for the next one, which is faster where pictures of one size follow
    /// each other.
    void keepMemory() { keepsMemory_ = true; }

    /// Rewrites `picture`, or replaces it by the new picture that the method makes.
    CallOutcome apply(Bitmap& picture, const ReadyCall& call);
    /// The same with calls that treat every pixel alone, together if they can be. Returns the outcome of each
    /// up to the first that fails.
    std::vector<CallOutcome> apply(Bitmap& picture, std::span<const ReadyCall> calls);
    /// The same on one band, for a strip of a picture whose other strips are read and written meanwhile.
    std::vector<CallOutcome> applyToStrip(Bitmap& strip, std::span<const ReadyCall> calls);
    /// The same with all calls of a look.
    CallOutcome apply(Bitmap& picture, const ReadyLook& look);

private:
    CallOutcome applyOn(int32_t bands, Bitmap& picture, const ReadyCall& call);
    std::vector<CallOutcome> applyOn(int32_t bands, Bitmap& picture, std::span<const ReadyCall> calls);

    ImageEngine engine_;
    const int32_t bands_;  ///< 0 for one for each processor
    bool keepsMemory_ = false;
    ScratchAllowance keptMemory_;  ///< beside that of the engine, which ends with a call
};

}  // namespace krl::player
