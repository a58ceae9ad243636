#pragma once

#include <vector>

#include "core/Bands.h"

namespace krl {

/// Gives each band's pixels to `measure(first, last)` and keeps what each finds, so that bands
/// share nothing.
template <class Finding, class Measure>
Status measureBands(const ImageEngine& engine, std::vector<Finding>& findings, Measure&& measure) {
    if (Status state = engine.imageStatus()) return state;
    const int32_t bandCount = engine.getThreadCount();
    findings.resize(size_t(bandCount));
    return runBands(engine, bandCount, [&](int32_t band) {
        const IndexRange run = pixelBand(engine, bandCount, band);
        Pixel* const pixels = engine.buffer()->row(0);
        if (run.first < run.last) findings[size_t(band)] = measure(pixels + run.first, pixels + run.last);
    });
}

}  // namespace krl
