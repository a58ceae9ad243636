#include <algorithm>
#include <vector>

#include "catalogue/Catalogue.h"
#include "effects/warp/WarpChoices.h"
#include "effects/warp/WaveFrequency.h"
#include "kernels/sample/PositionWarp.h"
#include "kernels/sample/Trigonometry.h"
#include "krlimage/warp.h"

namespace krl {

/// Breaks the picture into blocks: a pixel comes from
/// `x + amplitude * sin((width / 2 - x) * frequency + horizPhase)`,
/// `y + amplitude * cos((height / 2 - y) * frequency + vertPhase)`, held in the picture. An `amplitude` below
/// 0 is 0.
Status blockWaves(ImageEngine& engine, float amplitude, float frequency, float horizPhase, float vertPhase,
                  SampleQuality quality, ChannelTarget colourOrAlpha) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const double height = amplitude < 0 ? 0.0f : amplitude;
    const double radians = radiansPerPixel(frequency);
    const auto map = [&](int32_t count, auto wave, float phase) {
        std::vector<float> table(static_cast<size_t>(std::max(count, 0)));
        const int32_t middle = count / 2;
        for (int32_t i = 0; i < count; ++i)
            table[static_cast<size_t>(i)] =
                heldInside(static_cast<float>(wave((middle - i) * radians + phase) * height + i), count);
        return table;
    };
    const std::vector<float> mapX = map(image.width, sine, horizPhase);
    const std::vector<float> mapY = map(image.height, cosine, vertPhase);
    return warpByPosition(engine, quality, colourOrAlpha,
                          [&](int32_t y, int32_t first, PositionBatch& batch) {
                              std::copy_n(mapX.begin() + first, batch.count, batch.x);
                              std::fill_n(batch.y, batch.count, mapY[static_cast<size_t>(y)]);
                          });
}

void describeBlockWaves(Catalogue& catalogue) {
    catalogue.add("krlImageBlockWaves", blockWaves)
        .summary("Breaks the picture into blocks along waves, as seen through glass bricks.")
        .words("glass, ripple, distort, blocks")
        .real("amplitude", {.from = 0, .to = 100, .example = 12, .least = 0, .neutral = 0, .pixels = true},
              "how far a place is moved, in pixels")
        .real("frequency", {.from = 0, .to = 45, .example = 6}, kFrequencyMeaning)
        .real("horizPhase", {.from = -6.3, .to = 6.3, .example = 0},
              "where the wave across begins at the middle, in radians")
        .real("vertPhase", {.from = -6.3, .to = 6.3, .example = 1.5},
              "where the wave downward begins at the middle, in radians")
        .symbol("quality", warpQualities(), refused("Block Waves invalid quality input (Image)"),
                kQualityMeaning)
        .showing("bilinear")
        .thenCompare()
        .symbol("colourOrAlpha", anyChannels(), refused("Block Waves invalid colourOrAlpha input (Image)"),
                kChannelsMeaning)
        .inputFailure("Block Waves input failure (Image)")
        .failed("Failed Block Waves function (Image)");
}

}  // namespace krl
