#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"

/// Makes a new picture of the loaded one's size, as the caller makes pictures, and paints nothing into it.
namespace krl {

namespace {

Outcome dropShadow(Call& call) {
    const ImageInfo& info = call.engine()->getImageInfo();
    Caller& caller = call.caller();
    ValueHandle frame;
    if (caller.makePicture(info.width, info.height, frame) != kCallOk)
        return failure(call.method().failedText());
    caller.givePicture("frame", frame);
    // Nothing is painted, but hosts see the picture locked and unlocked.
    const PictureLock lock(caller, frame);
    return lock.held() ? succeeded() : failure(call.method().failedText());
}

}  // namespace

void describeDropShadow(Catalogue& catalogue) {
    catalogue.add("krlImageDropShadow")
        .summary("Makes a new picture of the loaded one's size; the loaded one is not changed.")
        .integer("blur", {.from = 0, .to = 50, .example = 5, .pixels = true}, "a radius in pixels")
        .integer("expand", {.from = 0, .to = 50, .example = 5, .pixels = true}, "a distance in pixels")
        .givesPicture("frame", "the new picture")
        .inputFailure("Drop Shadow input failure (Image)")
        .failed("Failed Drop Shadow function (Image)")
        .does(dropShadow);
}

}  // namespace krl
