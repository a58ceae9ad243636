#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "effects/key/AutoKey.h"
#include "effects/key/MeasureBands.h"

namespace krl {

namespace {

struct ColourCount {
    int64_t green = 0, blue = 0;
};

KRL_VECTOR_LEVELS ColourCount countColours(const Pixel* pixels, int32_t count) {
    int32_t greens = 0, blues = 0;
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(pixels[i]);
        const int32_t blue = byteAt(word, 0), green = byteAt(word, 8), red = byteAt(word, 16);
        const bool isGreen = (green >= blue) & (green >= red);
        greens += isGreen;
        blues += (blue > green) & (blue > red);
    }
    return {greens, blues};
}

}  // namespace

/// Finds which backing the picture has: blue where more pixels have `blue > green, red` than
/// `green >= blue, red`, else green.
Status autoColor(const ImageEngine& engine, KeyColour& found) {
    std::vector<ColourCount> counts;
    const Status counted = measureBands(engine, counts, [](const Pixel* first, const Pixel* last) {
        return countColours(first, static_cast<int32_t>(last - first));
    });
    ColourCount total;
    for (const ColourCount& count : counts) total = {total.green + count.green, total.blue + count.blue};
    found = total.green < total.blue ? KeyColour::Blue : KeyColour::Green;
    return counted;
}

void describeAutoColor(Catalogue& catalogue) {
    catalogue.add("krlImageAutoColor")
        .summary("Finds whether the backing is green or blue; the picture stays as it is.")
        .words("green screen, blue screen, detect, backing, key")
        .gives("auto_color", kAutoColourMeaning)
        .leavesPicture()
        .failed("Failed Auto Color function (Image)")
        .does([](Call& call) {
            KeyColour found = KeyColour::Green;
            const Status status = autoColor(*call.engine(), found);
            return giveColour(call, status, found);
        });
}

}  // namespace krl
