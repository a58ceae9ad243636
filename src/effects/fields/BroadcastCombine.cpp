#include <deque>
#include <vector>

#include "catalogue/Catalogue.h"
#include "catalogue/NewPicture.h"
#include "effects/fields/BroadcastParts.h"
#include "krlimage/fields.h"

/// Joins the parts of a broadcast split into one picture again.
namespace krl {

Status broadcastWholeSize(std::span<const SecondImage> parts, ImageInfo& whole) {
    if (!isPartCount(parts.size())) return kStatusRefused;
    const ImageInfo& first = parts.front().info;
    if (first.width < 1 || first.height < 1 || !areParts(parts, first)) return kStatusRefused;

    const int32_t factor = broadcastFactor(int32_t(parts.size()));
    const int64_t width = int64_t(first.width) * factor, height = int64_t(first.height) * factor;
    if (width * int64_t(sizeof(Pixel)) > INT32_MAX || height > INT32_MAX) return kStatusRefused;
    whole = unpaddedInfo(int32_t(width), int32_t(height));
    return kStatusOk;
}

Status broadcastCombine(std::span<const SecondImage> parts, const NewImage& whole) {
    ImageInfo expected;
    if (Status size = broadcastWholeSize(parts, expected)) return size;
    if (!whole.pixels || !hasSize(whole.info, expected)) return kStatusRefused;

    forEachPartPixel(parts, whole, [](const Pixel& part, Pixel& joined) { joined = part; });
    return kStatusOk;
}

namespace {

/// The pictures of a list, locked for the life of this object. An element that is no picture of whole pixels
/// has none.
class ListedPictures {
public:
    ListedPictures(const Call& call, const ValueHandle& list) {
        const int32_t count = call.countElements(list);
        for (int32_t i = 1; i <= count; ++i) {
            HeldValue& value = values_.emplace_back(call.caller());
            SecondImage& image = sources_.emplace_back();
            if (call.element(list, i, value) != kCallOk) continue;
            call.caller().describePicture(*value, image.info);
            if (hasWholePixels(image.info))
                image.pixels = locks_.emplace_back(call.caller(), *value).pixels();
        }
    }

    const std::vector<SecondImage>& sources() const { return sources_; }

private:
    std::deque<HeldValue> values_;
    std::deque<PictureLock> locks_;  ///< gone before the values
    std::vector<SecondImage> sources_;
};

Outcome combinePictures(Call& call) {
    const ListedPictures parts(call, call.raw(0));
    ImageInfo whole;
    Status status = broadcastWholeSize(parts.sources(), whole);
    if (status != kStatusOk) return failure(call.method().failedText());
    NewPicture frame(call, whole.width, whole.height);
    status = broadcastCombine(parts.sources(), frame.image());
    if (status != kStatusOk) return failure(call.method().failedText());
    call.caller().givePicture("frame", frame.give());
    return succeeded();
}

}  // namespace

void describeBroadcastCombine(Catalogue& catalogue) {
    catalogue.add("krlImageBroadcastCombine")
        .summary("Joins the pictures of a broadcast split into one new picture.")
        .words("join, resolution, video")
        .value("imageList",
               "[image(480, 320, 32), image(480, 320, 32), image(480, 320, 32), image(480, 320, 32)]",
               "4 or 16 pictures of one size, in the order of the split")
        .givesPicture("frame", "the new picture")
        .failed("Failed Broadcast Split function (Image)")
        .does(combinePictures);
}

}  // namespace krl
