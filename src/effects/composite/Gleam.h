#pragma once

#include <span>

#include "core/Scratch.h"
#include "kernels/blend/BlendMode.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/engine.h"
#include "krlimage/options.h"

namespace krl {

/// Where a gleam's light has its colour from.
enum class GleamColour : int32_t {
    FromImage = 54,
    ColouriseImage = 55,  ///< from the colour list, by the light's level; grey where the list is empty
};

/// What the two gleams are told alike. In both "transparency" means opacity: 255 is full strength.
struct GleamSettings {
    BlendMode compositeBlendMethod = BlendMode::Normal;
    int32_t compositeTransparency = 255;
    int32_t blackPoint = 0;
    int32_t whitePoint = 255;
    BlendMode blendMethod = BlendMode::Add;
    float brightness = 0;
    int32_t transparency = 255;
    std::span<const CurveKey> colorList;
    GleamColour colourMethod = GleamColour::FromImage;
};

/// What `settings` hold for black and white: levels below `black` are 0, above `white` 255, and between
/// them they are stretched.
ByteCurve gleamLevels(int32_t black, int32_t white);
/// Levels driven toward white: 0 changes nothing, 1 makes all of them white.
ByteCurve gleamGain(float brightness);

/// The stages that both gleams are made of; between `extractLight` and `finish` each does with the light
/// what is its own. The light is a block of the image's size.
class GleamStages {
public:
    /// `foreground` must have the image's size.
    GleamStages(const ImageEngine& engine, const SecondImage& foreground, const GleamSettings& settings);

    /// The bright parts of the foreground, alpha as it is.
    Status extractLight(Scratch<Pixel>& light) const;
    /// Colours the light, lays the foreground over the image and the light on top.
    Status finish(Scratch<Pixel>& light) const;

private:
    Status colourise(Scratch<Pixel>& light) const;
    Status layBoth(const Scratch<Pixel>& light) const;
    bool colourises() const { return settings_.colourMethod == GleamColour::ColouriseImage; }
    bool hasRamp() const { return colourises() && settings_.colorList.size() >= 2; }

    const ImageEngine& engine_;
    const SecondImage& foreground_;
    GleamSettings settings_;
};

/// Softens the bright parts of `foreground` by `blur` and lays them, over the foreground itself, on the
/// image.
Status gleamBlurComposite(ImageEngine& engine, const SecondImage& foreground, BlendMode compositeBlendMethod,
                          int32_t compositeTransparency, int32_t blackPoint, int32_t whitePoint, int32_t blur,
                          BlendMode blendMethod, float brightness, int32_t transparency,
                          std::span<const CurveKey> colorList, GleamColour colourMethod);

}  // namespace krl
