#include <cmath>

#include "catalogue/Catalogue.h"
#include "catalogue/Choices.h"
#include "core/Batch.h"
#include "core/Doubts.h"
#include "core/ExactFunctions.h"
#include "core/ImageCopy.h"
#include "core/Numbers.h"
#include "core/VectorLevels.h"
#include "kernels/neighbour/Gradient3x3.h"
#include "krlimage/edges.h"

namespace krl {

namespace {

/// The light on a relief, and how flat the relief is.
struct Light {
    int32_t x, y, z;
    int32_t depth;  ///< the upright part of every surface's normal

    Light(int32_t strength, float azimuth, float elevation) {
        const auto az = static_cast<float>(azimuth * kRadiansPerDegree);
        const auto el = static_cast<float>(elevation * kRadiansPerDegree);
        x = truncate(exactCosine(double(az)) * exactCosine(double(el)) * 255.9);
        y = truncate(exactSine(double(az)) * exactCosine(double(el)) * 255.9);
        z = truncate(exactSine(double(el)) * 255.9);
        depth = 1530 / strength;
    }

    /// Whether the light comes from above, as a number: then every sum of shading is a whole number
    /// that single precision holds, and none but a slope turned away is dark.
    bool isOrdinary() const { return std::abs(int64_t(x)) < 256 && std::abs(int64_t(y)) < 256 && z >= 0; }
};

/// How far a surface leans to the right and down.
struct Slope {
    int32_t x, y;
};

inline Slope slopeAt(const uint8_t* above, const uint8_t* at, const uint8_t* below) {
    constexpr int32_t kLeft = -4, kRight = 4;
    return {above[kLeft] + at[kLeft] + below[kLeft] - above[kRight] - at[kRight] - below[kRight],
            below[kLeft] + below[0] + below[kRight] - above[kLeft] - above[0] - above[kRight]};
}

/// The shade of a surface: light . normal / |normal|, 0 where it is turned away from the light. The normal is
/// (slope.x, slope.y, depth).
uint8_t shadeOf(const Light& light, const Slope& slope) {
    if (slope.x == 0 && slope.y == 0) return static_cast<uint8_t>(light.z);
    const int32_t lean = wrapAdd(wrapMultiply(slope.x, light.x), wrapMultiply(slope.y, light.y));
    const int32_t dot = wrapAdd(lean, wrapMultiply(light.depth, light.z));
    if (dot < 0) return 0;
    const int32_t square = slope.x * slope.x + slope.y * slope.y + light.depth * light.depth;
    return static_cast<uint8_t>(truncate(dot / std::sqrt(double(square))));
}

constexpr size_t kBatchBytes = kBatchPixels;

/// The two numbers whose quotient is the shade of a byte: the light along the normal, 0 where it comes
/// from behind, and the normal's length. Light is shorter than 256, and so is every quotient.
struct ShadeTerms {
    float dot[kBatchBytes], length[kBatchBytes];
};

KRL_VECTOR_LEVELS
void gatherTerms(const uint8_t* above, const uint8_t* at, const uint8_t* below, int32_t count,
                 const Light& light, ShadeTerms& terms) {
    const auto x = float(light.x), y = float(light.y), upright = float(light.depth * light.z);
    const auto depthSquare = float(light.depth * light.depth);
    const float flatShade = float(light.z) + 0.5f;  // beyond doubt
    for (int32_t i = 0; i < count; ++i) {
        const Slope slope = slopeAt(above + i, at + i, below + i);
        const auto slopeX = float(slope.x), slopeY = float(slope.y);
        const float dot = slopeX * x + slopeY * y + upright;
        const float length = std::sqrt(slopeX * slopeX + slopeY * slopeY + depthSquare);
        const bool isFlat = (slope.x | slope.y) == 0;
        terms.dot[i] = isFlat ? flatShade : dot > 0.0f ? dot : 0.0f;
        terms.length[i] = isFlat ? 1.0f : length;
    }
}

/// Divides in single precision. A quotient is wrong by less than `kDoubt`, so only one that near a whole
/// number is in doubt: marks those, and returns whether there are any.
KRL_VECTOR_LEVELS
bool divideTerms(const ShadeTerms& terms, int32_t count, uint8_t* shades, uint8_t* doubts) {
    constexpr float kDoubt = 1e-4f;
    uint8_t any = 0;
    for (int32_t i = 0; i < count; ++i) {
        const float shade = terms.dot[i] / terms.length[i];
        const int32_t least = static_cast<int32_t>(shade - kDoubt),
                      most = static_cast<int32_t>(shade + kDoubt);
        shades[i] = static_cast<uint8_t>(most);
        doubts[i] = static_cast<uint8_t>(most - least);
        any |= doubts[i];
    }
    return any != 0;
}

void shadeSpan(const uint8_t* above, const uint8_t* at, const uint8_t* below, int32_t count,
               const Light& light, uint8_t* shades) {
    ShadeTerms terms;
    uint8_t doubts[kBatchBytes];
    gatherTerms(above, at, below, count, light, terms);
    const bool any = divideTerms(terms, count, shades, doubts);
    settleDoubts(any, doubts, count,
                 [&](int32_t i) { shades[i] = shadeOf(light, slopeAt(above + i, at + i, below + i)); });
}

/// The part of the picture that is shaded: its sizes are known to 16 bits, and what is beyond them
/// is read as a narrower picture.
ImageBuffer shadedPart(const ImageBuffer& image) {
    constexpr int32_t kSizes = 0x10000;
    ImageBuffer part = image;
    part.height = image.height % kSizes;
    if (image.width >= kSizes) {
        part.width = image.width % kSizes;
        part.rowBytes = part.width * int32_t(sizeof(Pixel));
    }
    return part;
}

}  // namespace

/// Each byte as a surface that leans with its neighbours, lit from one side.
Status emboss(ImageEngine& engine, int32_t strength, float azimuth, float elevation, ChannelTarget target) {
    if (engine.imageStatus()) return kStatusRefused;
    const Light light(clampTo(strength, 1, 50), clampTo(azimuth, 0.0f, 360.0f), elevation);
    const ChannelMask mask(target == ChannelTarget::RGB ? target : ChannelTarget::Alpha);
    const ImageBuffer& image = *engine.buffer();
    const ImageBuffer part = shadedPart(image);
    const ImageCopy copy(image);
    ImageBuffer source = part;
    source.pixels = copy.view().pixels;

    const auto shade = [&](const Pixel* above, const Pixel* at, const Pixel* below, int32_t count,
                           Pixel* fresh) {
        const uint8_t *up = firstByte(above), *row = firstByte(at), *down = firstByte(below);
        uint8_t* out = firstByte(fresh);
        forEachBatch<kBatchBytes>(size_t(count) * 4, [&](size_t i, size_t bytes) {
            if (light.isOrdinary())
                shadeSpan(up + i, row + i, down + i, int32_t(bytes), light, out + i);
            else
                for (size_t j = i; j < i + bytes; ++j)
                    out[j] = shadeOf(light, slopeAt(up + j, row + j, down + j));
        });
    };
    for (int32_t y = 1; y < part.height - 1; ++y) filterInnerRow(source, part, y, mask, shade);
    repairBorder(image, mask);
    return kStatusOk;
}

void describeEmboss(Catalogue& catalogue) {
    catalogue.add("krlImageEmboss", emboss)
        .summary("Lights the picture from one side as if it were a relief.")
        .words("relief, stamp, bump, metal")
        .integer("strength", {.from = 1, .to = 50, .example = 8, .least = 1, .most = 50},
                 "depth of the relief")
        .real("azimuth", {.from = 0, .to = 360, .example = 45, .least = 0, .most = 360},
              "degrees round the compass that the light comes from")
        .real("elevation", {.from = 0, .to = 90, .example = 30},
              "degrees of the light above the picture; also the grey of what is flat")
        .symbol("colourOrAlpha", colourOrAlpha(), kElseAlpha, kTargetMeaning)
        .inputFailure("Emboss input failure (Image)")
        .failed("Failed Emboss function (Image)");
}

}  // namespace krl
