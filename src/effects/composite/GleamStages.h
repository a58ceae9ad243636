#pragma once

#include <span>

#include "core/Scratch.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/composite.h"

namespace krl {

/// Settings common to both gleams.
struct GleamLook {
    BlendMode compositeBlendMethod = BlendMode::Normal;
    int32_t compositeTransparency = 255;
    int32_t black = 0;
    int32_t white = 255;
    BlendMode blendMethod = BlendMode::Add;
    float brightness = 0;
    int32_t transparency = 255;
    std::span<const CurveKey> colorList = {};
    GleamColour colourMethod = GleamColour::FromImage;
};

/// Levels driven toward white: 0 changes nothing, 1 makes all of them white.
ByteCurve gleamGain(float brightness);

/// The stages that both gleams share; between `extractLight` and `finish` each treats the light in its own
/// way. The light is a block of the image's size.
class GleamStages {
public:
    /// `foreground` must have the image's size.
    GleamStages(const ImageEngine& engine, const SecondImage& foreground, const GleamLook& look);

    /// The bright parts of the foreground, alpha as it is.
    Status extractLight(Scratch<Pixel>& light) const;
    /// Lays the foreground over the image and on top the light, in its colours.
    Status finish(const Scratch<Pixel>& light) const;

private:
    bool colourises() const { return look_.colourMethod == GleamColour::ColouriseImage; }

    const ImageEngine& engine_;
    const SecondImage& foreground_;
    GleamLook look_;
};

}  // namespace krl
