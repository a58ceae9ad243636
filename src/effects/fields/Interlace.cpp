#include "effects/fields/Interlace.h"

#include <algorithm>
#include <cstring>

#include "core/Bands.h"
#include "krlimage/engine.h"

namespace krl {

namespace {

/// Rows of one band. Of an odd height the reciprocal of the thread count is taken away where one
/// would expect a division, so that several bands get the whole height each.
int32_t reinterlaceBandRows(int32_t height, int32_t threadCount) {
    if (height % 2 == 0) return ceilingShare(height, threadCount);
    return threadCount == 1 ? height - 1 : height;
}

}  // namespace

Status interlace(ImageEngine& engine, InterlaceType interlaceType, int32_t fieldDominance) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const bool fromBelow = interlaceType == InterlaceType::Deinterlace && fieldDominance == 0;
    const bool fromLastRow = (interlaceType == InterlaceType::Deinterlace) == (fieldDominance == 1);
    // The rows read are never among those written, so the image is its own scratch copy.
    const int32_t beside = fromBelow ? 1 : -1;
    for (int32_t y = image.height - (fromLastRow ? 1 : 2); y >= 0 && y + beside >= 0; y -= 2)
        std::memcpy(image.row(y), image.row(y + beside), size_t(image.rowBytes));
    return kStatusOk;
}

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
    return runBands(threadCount, [&](int32_t band) {
        const int64_t last = std::min(commonRows, bandRows * (band + 1));
        for (int64_t y = bandRows * band + 1; y < last; y += 2)
            std::memcpy(target.row(int32_t(y)), imageTwo.row(int32_t(y)), rowBytes);
    });
}

}  // namespace krl
