#include "catalogue/Catalogue.h"
#include "core/VectorLevels.h"
#include "effects/colour/MixLanes.h"
#include "krlimage/colour.h"

namespace krl {

namespace {

/// Weights of a grey, and what their sum is divided by.
struct GreyWeights {
    float red, green, blue;
    double divisor;
};

/// grey = truncate(truncate(green + blue + red, each by its weight) / divisor), limited to 0..255.
KRL_VECTOR_LEVELS void weigh(const ColourLanes& colours, const GreyWeights& weights,
                             int32_t (&greys)[kBatchPixels]) {
    for (size_t i = 0; i < kBatchPixels; ++i) {
        const float green = float(colours.green[i]) * weights.green;
        const float blue = float(colours.blue[i]) * weights.blue;
        const float red = float(colours.red[i]) * weights.red;
        const int32_t sum = truncate(double(green) + blue + red);
        greys[i] = clampTo(truncate(sum / weights.divisor), 0, 255);
    }
}

}  // namespace

/// Mixes each colour with the weighted sum of all three, by opacity of 256. Any weight and opacity is
/// allowed.
Status desaturatePro(ImageEngine& engine, float red, float green, float blue, int32_t opacity,
                     bool equalise) {
    const auto sum = static_cast<float>(double(green) + blue + red);
    const GreyWeights weights = {red, green, blue, equalise && sum != 0.0f ? sum : 1.0};
    return forEachLaneBatch(engine, [=](ColourLanes& colours) {
        int32_t greys[kBatchPixels];
        weigh(colours, weights, greys);
        mixLanes(colours.blue, greys, opacity);
        mixLanes(colours.green, greys, opacity);
        mixLanes(colours.red, greys, opacity);
    });
}

void describeDesaturatePro(Catalogue& catalogue) {
    catalogue.add("krlImageDesaturatePro", desaturatePro)
        .summary("Mixes a black and white picture from red, green and blue by weight.")
        .words("grey, gray, grayscale, black and white, monochrome, channel mixer, red filter")
        .real("red", {.from = 0, .to = 1, .example = 0.3}, "weight of red")
        .real("green", {.from = 0, .to = 1, .example = 0.59}, "weight of green")
        .real("blue", {.from = 0, .to = 1, .example = 0.11}, "weight of blue")
        .integer("opacity", {.from = 0, .to = 256, .example = 256, .neutral = 0},
                 "share of the result, of 256; 0 changes nothing")
        .symbol("equalise", {{"true", true}, {"false", false}}, otherwise(false),
                "whether to divide by the sum of the weights")
        .inputFailure("Desaturate Pro input failure (Image)")
        .worksPerPixel()
        .failed("Failed Desaturate Pro function (Image)");
}

}  // namespace krl
