#include <deque>
#include <vector>

#include "catalogue/Catalogue.h"
#include "catalogue/NewPicture.h"
#include "effects/fields/BroadcastParts.h"
#include "krlimage/fields.h"

/// Deals a picture out into 4 or 16 smaller ones: of each block of 2 by 2 or 4 by 4 pixels, every pixel goes
/// to a part of its own.
namespace krl {

Status broadcastPartSize(const ImageEngine& engine, int32_t factor, ImageInfo& part) {
    if (Status state = engine.imageStatus()) return state;
    part = unpaddedInfo(engine.buffer()->width / factor, engine.buffer()->height / factor);
    return part.width < 1 || part.height < 1 ? kStatusRefused : kStatusOk;
}

Status broadcastSplit(const ImageEngine& engine, std::span<const NewImage> parts) {
    if (Status state = engine.imageStatus()) return state;
    if (!isPartCount(parts.size())) return kStatusRefused;
    ImageInfo expected;
    if (Status size = broadcastPartSize(engine, broadcastFactor(int32_t(parts.size())), expected))
        return size;
    if (!areParts(parts, expected)) return kStatusRefused;

    forEachPartPixel(parts, *engine.buffer(), [](Pixel& part, const Pixel& whole) { part = whole; });
    return kStatusOk;
}

namespace {

Outcome splitPicture(Call& call) {
    const int32_t factor = broadcastFactor(call.get<int32_t>(0));
    ImageInfo part;
    Status status = broadcastPartSize(*call.engine(), factor, part);
    if (status != kStatusOk) return failure(call.method().failedText());

    std::deque<NewPicture> pictures;
    std::vector<NewImage> targets;
    for (int32_t i = 0; i < factor * factor; ++i)
        targets.push_back(pictures.emplace_back(call, part.width, part.height).image());
    status = broadcastSplit(*call.engine(), targets);
    if (status != kStatusOk) return failure(call.method().failedText());

    call.caller().beginPictureList();
    for (NewPicture& picture : pictures) call.caller().addToPictureList(picture.give());
    return succeeded();
}

}  // namespace

void describeBroadcastSplit(Catalogue& catalogue) {
    catalogue.add("krlImageBroadcastSplit")
        .summary("Deals the picture out into 4 or 16 smaller ones; the result is a list of them.")
        .words("split, quarter, resolution, video")
        .integer("splitNum", {.from = 4, .to = 16, .example = 4},
                 "4 for blocks of 2 by 2 pixels, anything else for 4 by 4")
        .givesPictureList()
        .inputFailure("Broadcast Split input failure (Image)")
        .failed("Failed Broadcast Split function (Image)")
        .does(splitPicture);
}

}  // namespace krl
