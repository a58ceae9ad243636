#pragma once

#include <span>
#include <vector>

#include "catalogue/DirectCall.h"
#include "look/Extent.h"

/// Calls that treat every pixel alone, run together piece by piece: the picture is read and written once,
/// whatever the number of calls, its order, and where the result goes; curves become one. The bytes are those
/// of the calls one after another on the whole picture.
namespace krl {

/// A call with everything in the place where it takes effect.
struct ReadyCall {
    const Method& method;
    Extent extent;
    std::vector<Value> arguments;
};

/// Whether a call on `from` can run together with others and leave its result in `to`: the method treats
/// every pixel alone and changes all of the picture, all pictures have the size of `from` and no padding, and
/// no byte of `to` is another pixel's of any of them.
bool canFuse(const ReadyCall& call, const Picture& from, const Picture& to);

/// Whether a call on a picture is the same call on one strip of rows after another: the method treats every
/// pixel alone and changes all of the picture, and its arguments hold no pictures.
bool canRunOnStrips(const ReadyCall& call);

/// What calls came to: the result of the first that failed, or else of the last one.
struct ChainResult {
    CallResult result;
    size_t number = 0;  ///< of the call whose result it is
};

/// The most calls that run together: each keeps its tables, which have to stay in a processor's cache, and
/// its part of the stack.
inline constexpr size_t kMostFused = 16;

/// Runs one call or up to `kMostFused`, each of which `canFuse`, on `bands` threads, or for 0 on one for each
/// processor. If a call refuses its arguments, `to` is as it was. A cancelled engine may leave it partly
/// rewritten.
ChainResult runFused(ImageEngine& engine, int32_t bands, std::span<const ReadyCall> calls,
                     const Picture& from, const Picture& to);

}  // namespace krl
