#pragma once

#include "kernels/curve/ByteCurve.h"
#include "kernels/curve/SaturatedSteps.h"

namespace krl {

/// A curve for each of a pixel's four bytes: any number of curves one after another.
class PixelCurves {
public:
    /// Every byte stays.
    PixelCurves();

    /// Sends what comes out through further curves.
    void append(const ChannelCurves& next);
    void apply(Pixel* first, Pixel* last) const;

private:
    ColourCurves colours_;
    ByteCurve alpha_;
    std::optional<SaturatedSteps> steps_;  ///< the same, if they are such steps
};

}  // namespace krl
