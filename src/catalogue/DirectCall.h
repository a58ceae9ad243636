#pragma once

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/Method.h"
#include "catalogue/Value.h"

namespace krl {

/// What a call of a method came to.
struct CallResult {
    /// Why it failed, in the words that scripts get in `error`; empty for a success.
    std::string error;
    /// `kCallOutOfMemory` for a failure whose cause was that; other failures may leave it 0.
    CallCode code = kCallOk;
    /// Entries of the result beside `error`, in order.
    std::vector<std::pair<std::string, Value>> entries;
    /// The new pictures of a method whose result is a list of them.
    ListValue pictures;
    /// Whether scripts see an `error` entry of 0 before the others.
    bool withError = true;

    bool ok() const { return error.empty(); }
    /// The new picture, or the first of several; null where there is none.
    const Picture* firstPicture() const;
};

/// A picture that the engine works on; at the end of this object's life the engine forgets it with all that
/// it knows about it.
class LoadedPicture {
public:
    LoadedPicture(ImageEngine& engine, const Picture& picture) : engine_(engine) {
        engine_.load(picture.pixels, picture.info);
    }
    ~LoadedPicture() {
        try {
            engine_.load(nullptr, {});
        } catch (const std::bad_alloc&) {
            // The description stays, which no method reads without a picture.
        }
        engine_.unload();
    }
    LoadedPicture(const LoadedPicture&) = delete;
    LoadedPicture& operator=(const LoadedPicture&) = delete;

private:
    ImageEngine& engine_;
};

/// Calls `method` on the engine's picture with plain values, one for each argument. No host takes part: what
/// happens is what happens on a script's call, in the same order. A method that manages the engine fails.
/// Pictures in `arguments` stay their owners'; a method may write one that it is given to change.
CallResult callMethod(const Method& method, ImageEngine& engine, const std::vector<Value>& arguments);

/// A smaller share of a picture takes most methods less time than a thread takes to start.
inline constexpr size_t kLeastBandPixels = 1 << 16;

/// The rule for programs that promise the same result on every machine: sets the bands that `method` runs on
/// to `bands`, or for 0 to one for each processor, but none of less than `kLeastBandPixels` of the picture
/// that is loaded, except that a method whose definition contains the bands then runs on one.
void chooseBands(ImageEngine& engine, const Method& method, int32_t bands);

}  // namespace krl
