#include <deque>

#include "catalogue/Catalogue.h"
#include "catalogue/NewPicture.h"
#include "effects/fields/Broadcast.h"
#include "effects/fields/Interlace.h"
#include "effects/fields/Sizes.h"

/// Bindings of the field and size methods, most of which make new pictures.
namespace krl {

namespace {

Outcome halveSize(Call& call) {
    ImageInfo half;
    Status status = halfSizeInfo(*call.engine(), half);
    if (status != kStatusOk) return failure(call.method().failedText());
    NewPicture frame(call, half.width, half.height);
    status = halfSize(*call.engine(), frame.image());
    if (status != kStatusOk) return failure(call.method().failedText());
    call.caller().givePicture("frame", frame.give());
    return succeeded();
}

Outcome split(Call& call) {
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

/// The pictures of a list, locked for the life of this object. What is no picture has no pixels.
class ListedPictures {
public:
    explicit ListedPictures(const Call& call, const ValueHandle& list) : caller_(call.caller()) {
        const int32_t count = call.countElements(list);
        for (int32_t i = 1; i <= count; ++i) {
            HeldValue& value = values_.emplace_back(caller_);
            SecondImage& image = sources_.emplace_back();
            if (call.element(list, i, value) != kCallOk) continue;
            caller_.describePicture(*value, image.info);
            uint8_t* pixels = nullptr;
            if (caller_.lockPicture(*value, pixels) != kCallOk) continue;
            image.pixels = pixels;
            locked_.push_back(&*value);
        }
    }
    ~ListedPictures() {
        for (const ValueHandle* value : locked_) caller_.unlockPicture(*value);
    }
    ListedPictures(const ListedPictures&) = delete;
    ListedPictures& operator=(const ListedPictures&) = delete;

    const std::vector<SecondImage>& sources() const { return sources_; }

private:
    Caller& caller_;
    std::deque<HeldValue> values_;
    std::vector<SecondImage> sources_;
    std::vector<const ValueHandle*> locked_;
};

Outcome combine(Call& call) {
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

Outcome mergeFields(Call& call) {
    const auto one = call.get<SecondImage>(0), two = call.get<SecondImage>(1);
    // The lock is good for writing too, and the first picture is the one that changes.
    const Status status = reinterlace(*call.engine(), const_cast<uint8_t*>(one.pixels), one.info, two);
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

void addBroadcast(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageBroadcastCombine")
            .summary("Joins the pictures of a broadcast split into one new picture.")
            .value("imageList",
                   "[image(480, 320, 32), image(480, 320, 32), image(480, 320, 32), image(480, 320, 32)]",
                   "4 or 16 pictures of one size, in the order of the split")
            .givesPicture("frame", "the new picture")
            .failed("Failed Broadcast Split function (Image)")
            .does(combine));
    catalogue.add(
        method("krlImageBroadcastSplit")
            .summary("Deals the picture out into 4 or 16 smaller ones; the result is a list of them.")
            .integer("splitNum", {.from = 4, .to = 16, .example = 4},
                     "4 for blocks of 2 by 2 pixels, anything else for 4 by 4")
            .givesPictureList()
            .inputFailure("Broadcast Split input failure (Image)")
            .failed("Failed Broadcast Split function (Image)")
            .does(split));
}

void addSizes(Catalogue& catalogue) {
    catalogue.add(method("krlImageDrawCheckerBox", drawCheckerBox)
                      .summary("Paints a checker pattern over the colours; transparency stays.")
                      .integer("size", {.from = 1, .to = 200, .example = 40}, "side of a square, in pixels")
                      .colour("cOne", Colour(230, 230, 230), "colour of the first square")
                      .colour("cTwo", Colour(60, 60, 70), "colour of the squares beside it")
                      .inputFailure("Draw Checker Box input failure (Image)")
                      .failed("Failed Draw Checker Box function (Image)"));
    catalogue.add(method("krlImageHalfSize")
                      .summary("Makes a new picture of half the width and height.")
                      .givesPicture("frame", "the new picture")
                      .failed("Failed Half Size Check function (Image)")
                      .dependsOnBands()
                      .does(halveSize));
}

void addInterlace(Catalogue& catalogue) {
    const auto isField = [](const ArgumentValue& argument) {
        return argument.integer == 0 || argument.integer == 1;
    };
    catalogue.add(
        method("krlImageInterlace", interlace)
            .summary("Fills one field of an interlaced picture from the other.")
            .symbol("interlaceType",
                    {{"deinterlace", InterlaceType::Deinterlace}, {"splitField", InterlaceType::SplitField}},
                    refused("Interlace invalid input interlaceType (Image)"),
                    "fill a field from the rows beside it, or shift the field that is kept")
            .integer("fieldDominance", {.from = 0, .to = 1, .example = 0},
                     "which of the two fields is filled, 0 or 1")
            .mustPass(isField, "Interlace invalid input fieldDominance (Image)")
            .inputFailure("Interlace input failure (Image)")
            .failed("Failed Interlace function (Image)"));
    catalogue.add(method("krlImageReinterlace")
                      .summary("Copies one field of a second picture into the first.")
                      .image("imageOne", {}, "landscape.png", "the picture that is changed")
                      .image("imageTwo", {}, "landscape.png", "the picture whose rows it takes")
                      .failed("Failed Reinterlace function (Image)")
                      .dependsOnBands()
                      .leavesPicture()
                      .asksPlayer()
                      .does(mergeFields));
}

}  // namespace

void describeFieldMethods(Catalogue& catalogue) {
    addBroadcast(catalogue);
    addSizes(catalogue);
    addInterlace(catalogue);
}

}  // namespace krl
