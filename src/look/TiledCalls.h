#pragma once

#include <span>
#include <vector>

#include "catalogue/DirectCall.h"
#include "look/Extent.h"

/// Calls that treat every pixel alone, run together on tiles that fit into a processor's cache: the picture
/// is read and written once, whatever the number of calls, its order, and where the result goes. The bytes
/// are those of the calls one after another on the whole picture.
namespace krl {

/// A call with everything in the place where it takes effect.
struct ReadyCall {
    const Method& method;
    Extent extent;
    std::vector<Value> arguments;
};

/// Whether a call on `from` can work on tiles and leave its result in `to`: the method treats every pixel
/// alone, all pictures have the size of `from`, and no byte of `to` is another pixel's of any of them.
bool canRunOnTiles(const ReadyCall& call, const Picture& from, const Picture& to);

/// What calls came to: the result of the last one, or of the first that failed and its number.
struct ChainResult {
    CallResult result;
    size_t failed = 0;
};

/// Runs at least one call, each of which `canRunOnTiles`, on `bands` threads, or for 0 on one for each
/// processor. All arguments are tested first: a call that refuses them fails with `to` as it was. The other
/// failures, no memory and a cancelled engine, may leave `to` partly rewritten.
ChainResult runOnTiles(ImageEngine& engine, int32_t bands, std::span<const ReadyCall> calls,
                       const Picture& from, const Picture& to);

}  // namespace krl
