#include <algorithm>
#include <cstring>

#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "krlimage/fields.h"

/// Copies one field, every second row, of a second picture into the first.
namespace krl {

namespace {

/// Rows of one band. For an odd height the definition subtracts the reciprocal of the thread count where one
/// would expect a division, so each of several bands gets the whole height.
int32_t reinterlaceBandRows(int32_t height, int32_t threadCount) {
    if (height % 2 == 0) return ceilingShare(height, threadCount);
    return threadCount == 1 ? height - 1 : height;
}

}  // namespace

Status reinterlace(const ImageEngine& engine, uint8_t* imageOne, const ImageInfo& infoOne,
                   const SecondImage& imageTwo) {
    const ImageInfo& infoTwo = imageTwo.info;
    if (!imageOne || !imageTwo.pixels) return kStatusNoPixels;
    if (infoOne.width != infoTwo.width && infoOne.height != infoTwo.height) return kStatusRefused;

    const NewImage target{imageOne, infoOne};
    const int32_t threadCount = engine.getThreadCount();
    const int64_t bandRows = reinterlaceBandRows(infoOne.height, threadCount);
    const int64_t commonRows = std::min(infoOne.height - infoOne.height % 2, infoTwo.height);
    const size_t rowBytes = size_t(std::min(infoOne.width, infoTwo.width)) * sizeof(Pixel);
    return runBands(engine, threadCount, [&](int32_t band) {
        const int64_t last = std::min(commonRows, bandRows * (band + 1));
        for (int64_t y = bandRows * band + 1; y < last; y += 2)
            std::memcpy(target.row(int32_t(y)), imageTwo.row(int32_t(y)), rowBytes);
    });
}

namespace {

Outcome mergeFields(Call& call) {
    const auto one = call.get<SecondImage>(0), two = call.get<SecondImage>(1);
    // The lock permits writing too, and the first picture is the one that changes.
    const Status status = reinterlace(*call.engine(), const_cast<uint8_t*>(one.pixels), one.info, two);
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

}  // namespace

void describeReinterlace(Catalogue& catalogue) {
    catalogue.add("krlImageReinterlace")
        .summary("Copies one field of a second picture into the first.")
        .words("video, fields, scan lines, television, TV")
        .image("imageOne", {}, "landscape.png", "the picture that is changed")
        .image("imageTwo", {}, "landscape.png", "the picture whose rows it takes")
        .failed("Failed Reinterlace function (Image)")
        .dependsOnBands()
        .leavesPicture()
        .asksPlayer()
        .does(mergeFields);
}

}  // namespace krl
